#include "tests/unit/qt/QtTest.h"

namespace voxmate::qt
{

namespace
{

// Deletes the windows that are only waiting for it. Qt 6.8 would do so at the process's end, when the platform's
// plug-in has put its own part of them away already.
class WindowsGone : public testing::Environment
{
public:
    void TearDown() override
    {
        if (QCoreApplication::instance())
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
};

const testing::Environment* const windowsGone = testing::AddGlobalTestEnvironment(new WindowsGone);

} // namespace

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
