#include "tests/unit/qt/QtTest.h"

namespace voxmate::qt
{

QtApplication& App()
{
    static int argc = 1;
    static char name[] = "test_qt";
    static char* argv[] = {name, nullptr};
    static QtApplication* app = [] {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        return new QtApplication(argc, argv);
    }();
    return *app;
}

QWidget* QtTest::Window() const
{
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->objectName() == QStringLiteral("frmTest") && window->isVisible())
            return window;
    }
    throw std::logic_error("the form has no window");
}

} // namespace voxmate::qt
