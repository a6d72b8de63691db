// One application object for all tests of the front end, without a display, and a form that is shown.
#pragma once

#include "qt/system/QtApplication.h"
#include "qt/system/QtWindowSystem.h"
#include "tests/unit/qt/TestForm.h"

#include <QTest>
#include <QWidget>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace voxmate::qt
{

/// The application object, made on first use.
QtApplication& App();

/// The widget of that object name below `window`, if it is a W; null if there is none. In place of findChild<W*>, which
/// takes only classes with a meta-object of their own.
template <class W>
W* ChildOf(const QWidget* window, const char* name)
{
    for (QWidget* child : window->findChildren<QWidget*>(QString::fromLatin1(name))) {
        if (auto* found = dynamic_cast<W*>(child))
            return found;
    }
    return nullptr;
}

class QtTest : public testing::Test
{
protected:
    QtTest() { form.Show(); }

    /// The form's window, and the widget of that object name in it.
    QWidget* Window() const;
    template <class W = QWidget>
    W* Find(const char* name) const
    {
        return ChildOf<W>(Window(), name);
    }
    /// Returns a handler that records `what`.
    std::function<void()> Note(const std::string& what)
    {
        return [this, what] { happened.push_back(what); };
    }

    QtApplication& app = App();
    QtWindowSystem windows{VOXMATE_SHARE_DIR};
    TestForm form{windows};
    std::vector<std::string> happened;
};

using Happened = std::vector<std::string>;

} // namespace voxmate::qt
