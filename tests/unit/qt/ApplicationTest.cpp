#include "QtFixture.h"

namespace voxmate::qt
{

TEST(ApplicationTest, RestComesOnceAfterTheLastOfSeveralWindowsHasGone)
{
    QtApplication& app = App();
    int rests = 0;
    app.AtRest = [&rests] { ++rests; };
    QWidget first;
    QWidget second;
    first.show();
    second.show();
    first.hide();
    second.hide();
    EXPECT_EQ(rests, 0);
    EXPECT_TRUE(QTest::qWaitFor([&rests] { return rests > 0; }, 60'000));
    EXPECT_EQ(rests, 1);
    app.AtRest = nullptr;
}

} // namespace voxmate::qt
