// Access keys: every control of a window can be reached by one, and none means two controls.
#include "OptionsForm.h"
#include "controls/OptionButton.h"
#include "forms/frmReminder.h"
#include "forms/frmShowRem.h"

#include <cctype>
#include <map>

namespace voxmate
{

namespace
{

/// The key that a caption marks; 0: none.
char KeyOf(const std::string& caption)
{
    const std::size_t at = caption.find('&');
    return at == std::string::npos ? '\0'
                                   : static_cast<char>(std::tolower(static_cast<unsigned char>(caption.at(at + 1))));
}

/// The keys of what can be seen at the same time, and the controls that have none.
class Keys
{
public:
    std::map<char, Lines> keys;
    Lines without;

    void Add(const std::string& caption, const std::string& name)
    {
        if (const char key = KeyOf(caption); key != 0)
            keys[key].push_back(name);
        else
            without.push_back(name);
    }

    /// Adds the controls of a layout, but not those on the pages of its tabs. Options in a group with a key need none.
    void AddAll(const Layout& layout, bool inGroup = false)
    {
        const auto* frame = dynamic_cast<const Frame*>(layout.control);
        const auto* label = dynamic_cast<const Label*>(layout.control);
        const auto* captioned = dynamic_cast<const Captioned*>(layout.control);
        const auto* option = dynamic_cast<const OptionButton*>(layout.control);
        if (frame && frame->AccessKey != 0)
            Add(frame->MarkedCaption(), frame->Name);
        else if (label && label->Buddy && label->AccessKey != 0)
            Add(label->MarkedCaption(), label->Name);
        else if (captioned && !frame && !label && !(option && inGroup))
            Add(captioned->MarkedCaption(), captioned->Name);
        if (dynamic_cast<const TabStrip*>(layout.control))
            return;
        for (const Layout& child : layout.children)
            AddAll(child, inGroup || (frame && frame->AccessKey != 0));
    }

    Lines Ambiguous() const
    {
        Lines names;
        for (const auto& [key, users] : keys) {
            if (users.size() > 1)
                names.insert(names.end(), users.begin(), users.end());
        }
        return names;
    }
};

/// The fields that no label with a key names: they are reached by Tab only.
Lines Unnamed(const Form& form)
{
    Lines names;
    for (const Control* control : form.Controls()) {
        const bool field = dynamic_cast<const TextBox*>(control) || dynamic_cast<const ComboBox*>(control) ||
                           dynamic_cast<const ListView*>(control) || dynamic_cast<const MonthView*>(control);
        bool named = false;
        for (const Control* other : form.Controls()) {
            const auto* label = dynamic_cast<const Label*>(other);
            named = named || (label && label->Buddy == control && label->AccessKey != 0);
        }
        if (field && !named)
            names.push_back(control->Name);
    }
    return names;
}

class AccessKeysTest : public OptionsFormTest
{
};

TEST_F(AccessKeysTest, InTheEditorOnlyTheListAndTheCalendarHaveNone)
{
    frmReminder editor(program);
    Keys keys;
    keys.AddAll(editor.Arrangement);
    EXPECT_EQ(keys.Ambiguous(), Lines{});
    EXPECT_EQ(keys.without, Lines{});
    EXPECT_EQ(Unnamed(editor), (Lines{"lstvReminders", "mvDate"}));
}

TEST_F(AccessKeysTest, InTheNoticeNoneIsMissing)
{
    frmShowRem notice(program);
    Keys keys;
    keys.AddAll(notice.Arrangement);
    EXPECT_EQ(keys.Ambiguous(), Lines{});
    EXPECT_EQ(keys.without, Lines{});
    EXPECT_EQ(Unnamed(notice), Lines{});
}

TEST_F(AccessKeysTest, OnEachPageOfTheOptionsEveryKeyMeansOneControl)
{
    const Layout& tabs = form.Arrangement.children.at(0);
    ASSERT_EQ(tabs.control, &form.SSTab1);
    ASSERT_EQ(form.SSTab1.AccessKeys.size(), tabs.children.size());
    for (const Layout& page : tabs.children) {
        Keys keys;
        keys.AddAll(form.Arrangement);
        for (std::size_t i = 0; i < tabs.children.size(); ++i)
            keys.Add(MarkAccessKey(form.SSTab1.Captions()[i], form.SSTab1.AccessKeys[i]), form.SSTab1.Captions()[i]);
        keys.AddAll(page);
        EXPECT_EQ(keys.Ambiguous(), Lines{});
        EXPECT_EQ(keys.without, Lines{});
    }
    // These stand beside a check box that has a key.
    EXPECT_EQ(Unnamed(form), (Lines{"txtRemText", "txtAutoClose"}));
}

TEST_F(AccessKeysTest, TheButtonThatAnimatesHasItsKeyInBothCaptions)
{
    EXPECT_EQ(form.cmdAnimate.MarkedCaption(), "Anima&te");
    form.cmdAnimate.Caption = "Stop";
    EXPECT_EQ(form.cmdAnimate.MarkedCaption(), "S&top");
}

} // namespace

} // namespace voxmate
