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

class QtTest : public testing::Test
{
protected:
    QtTest() { form.Show(); }

    /// The form's window, and the widget of that object name in it.
    QWidget* Window() const;
    template <class W = QWidget>
    W* Find(const char* name) const
    {
        return Window()->findChild<W*>(QString::fromLatin1(name));
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
