#include "qt/forms/DialogPeers.h"

#include "controls/OptionButton.h"
#include "controls/Pictures.h"
#include "controls/TabStrip.h"
#include "qt/forms/CommonPeer.h"
#include "qt/widgets/DialogWidgets.h"

#include <QButtonGroup>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QTabWidget>

namespace voxmate::qt
{

namespace
{

class OptionPeer : public Common<OptionButton, QRadioButton>
{
public:
    OptionPeer(OptionButton& button, QWidget* parent)
        : Common(button, new QRadioButton(parent)), group_(GroupOf(button, parent))
    {
        group_->addButton(widget_);
        Update(Property::Caption);
        Update(Property::Value);
        UpdateTabStops();
        QObject::connect(widget_, &QRadioButton::toggled, &context_, [this] { UpdateTabStops(); });
        QObject::connect(widget_, &QRadioButton::clicked, &context_, [this] { control_.UserClick(); });
    }

    void Update(Property property) override
    {
        UpdateCommon(property);
        if (property == Property::Caption) {
            widget_->setText(ToQt(control_.MarkedCaption()));
        } else if (property == Property::Value && widget_->isChecked() != control_.Value) {
            // An exclusive group does not let a button be unset unless another one is set.
            group_->setExclusive(control_.Value);
            widget_->setChecked(control_.Value);
            group_->setExclusive(true);
        }
    }

private:
    /// The group is made for its first button and is deleted with the form's window.
    static QButtonGroup* GroupOf(const OptionButton& button, QWidget* parent)
    {
        const QString name = ToQt(button.Group().Name);
        auto* group = parent->findChild<QButtonGroup*>(name, Qt::FindDirectChildrenOnly);
        if (!group) {
            group = new QButtonGroup(parent);
            group->setObjectName(name);
        }
        return group;
    }

    /// Tab goes to the chosen button of a group; the arrow keys go on from there.
    void UpdateTabStops()
    {
        for (QAbstractButton* button : group_->buttons())
            button->setFocusPolicy(button->isChecked() || !group_->checkedButton() ? Qt::StrongFocus : Qt::ClickFocus);
    }

    QButtonGroup* group_;
};

class TabPeer : public Common<TabStrip, QTabWidget>
{
public:
    TabPeer(TabStrip& strip, QWidget* parent) : Common(strip, new QTabWidget(parent))
    {
        widget_->setUsesScrollButtons(false);
        for (const std::string& caption : control_.Captions()) {
            auto* page = new QWidget;
            page->setAccessibleName(WithoutAccessKey(ToQt(caption)));
            const auto number = static_cast<std::size_t>(widget_->count());
            const char key = number < control_.AccessKeys.size() ? control_.AccessKeys[number] : '\0';
            widget_->addTab(page, ToQt(MarkAccessKey(caption, key)));
        }
        Update(Property::ListIndex);
        QObject::connect(widget_, &QTabWidget::currentChanged, &context_,
                         [this](int index) { control_.UserSelect(index); });
    }

    void Update(Property property) override
    {
        UpdateCommon(property);
        if (property == Property::ListIndex) {
            const QSignalBlocker quiet(widget_);
            widget_->setCurrentIndex(control_.Tab);
        }
    }
};

class MoviePeer : public Common<MovingPicture, MovieLabel>
{
public:
    MoviePeer(MovingPicture& picture, const IconSet& icons, QWidget* parent)
        : Common(picture, new MovieLabel(icons.MoviePath(ToQt(picture.Picture)),
                                         icons.MoviePath(ToQt(picture.Picture + "-dark")), picture.SizePx, parent))
    {
    }
};

class PanePeer : public Common<Pane, PaneArea>
{
public:
    PanePeer(Pane& pane, QWidget* parent) : Common(pane, new PaneArea(parent)) {}
};

class SamplePeer : public Common<FontSample, SampleLabel>
{
public:
    SamplePeer(FontSample& sample, QWidget* parent) : Common(sample, new SampleLabel(parent))
    {
        Update(Property::Caption);
        Update(Property::Font);
    }

    void Update(Property property) override
    {
        UpdateCommon(property);
        if (property == Property::Caption)
            widget_->setText(ToQt(control_.Caption));
        else if (property == Property::Font)
            widget_->ShowIn(ToQt(control_.Font.get().Name), control_.Font.get().Size);
    }
};

} // namespace

std::unique_ptr<WidgetPeer> CreateDialogPeer(Control& control, const IconSet& icons, QWidget* parent)
{
    if (auto* button = dynamic_cast<OptionButton*>(&control))
        return std::make_unique<OptionPeer>(*button, parent);
    if (auto* strip = dynamic_cast<TabStrip*>(&control))
        return std::make_unique<TabPeer>(*strip, parent);
    if (auto* picture = dynamic_cast<MovingPicture*>(&control))
        return std::make_unique<MoviePeer>(*picture, icons, parent);
    if (auto* pane = dynamic_cast<Pane*>(&control))
        return std::make_unique<PanePeer>(*pane, parent);
    if (auto* sample = dynamic_cast<FontSample*>(&control))
        return std::make_unique<SamplePeer>(*sample, parent);
    return nullptr;
}

} // namespace voxmate::qt
