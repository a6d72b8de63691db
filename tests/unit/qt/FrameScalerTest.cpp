#include "QtTest.h"

#include "qt/character/FrameScaler.h"
#include "qt/character/Scaling.h"

#include <QEventLoop>
#include <QThread>

#include <atomic>
#include <chrono>
#include <semaphore>
#include <thread>

namespace voxmate::qt
{

namespace
{

agent::Picture PictureOf(std::int32_t number, int side)
{
    const auto count = static_cast<std::size_t>(side) * static_cast<std::size_t>(side);
    return {{number},
            std::make_shared<const Bitmap>(Bitmap{side, side, std::vector<std::uint32_t>(count, 0xFF0000FFu)})};
}

constexpr QSize Large(2000, 1000); // too large to be scaled at once

class FrameScalerTest : public testing::Test
{
protected:
    FrameScalerTest() { App(); }

    /// Lets the scaling of a large picture go on, and waits until it is reported.
    void Finish()
    {
        go.release();
        QEventLoop loop;
        const auto before = readied;
        whenReady = [&loop] { loop.quit(); };
        if (readied == before)
            loop.exec();
        whenReady = nullptr;
    }

    std::atomic<int> scalings = 0;
    std::counting_semaphore<> go{0};
    Qt::HANDLE thread = nullptr; ///< the thread of the last scaling
    int readied = 0;
    std::function<void()> whenReady;
    FrameScaler scaler{[this] {
                           ++readied;
                           if (whenReady)
                               whenReady();
                       },
                       [this](const Bitmap&, QSize size, const std::stop_token& stop) {
                           if (size == Large)
                               while (!stop.stop_requested() && !go.try_acquire_for(std::chrono::milliseconds(1))) {
                               }
                           ++scalings;
                           thread = QThread::currentThreadId();
                           QImage image(size, QImage::Format_ARGB32_Premultiplied);
                           image.fill(Qt::blue);
                           return image;
                       }};
};

TEST_F(FrameScalerTest, ASmallPictureIsScaledAtOnceAndOnceWhileItIsRemembered)
{
    const auto one = PictureOf(1, 20);
    const auto two = PictureOf(2, 20);
    for (int round = 0; round < 10; ++round) {
        ASSERT_TRUE(scaler.Get(one, {40, 40}, false));
        ASSERT_TRUE(scaler.Get(two, {40, 40}, false));
    }
    EXPECT_EQ(scalings, 2);
    EXPECT_EQ(thread, QThread::currentThreadId());
    // Another size and another kind of screen count as other pictures.
    EXPECT_EQ(scaler.Get(one, {30, 30}, false)->image.size(), QSize(30, 30));
    scaler.Get(one, {40, 40}, true);
    EXPECT_EQ(scalings, 4);
    EXPECT_EQ(scaler.Get(one, {40, 40}, true)->shape, QRegion(0, 0, 40, 40));
    EXPECT_EQ(readied, 0);
}

TEST_F(FrameScalerTest, WhatIsRememberedIsBounded)
{
    for (std::int32_t number = 0; number < 100; ++number) {
        scaler.Get(PictureOf(number, 20), {500, 500}, false);
        EXPECT_LE(scaler.MemoryUsed(), FrameScaler::MemoryBound);
    }
    EXPECT_GT(scaler.MemoryUsed(), FrameScaler::MemoryBound / 2);
    const int made = scalings;
    scaler.Get(PictureOf(99, 20), {500, 500}, false);
    EXPECT_EQ(scalings, made);
    scaler.Get(PictureOf(0, 20), {500, 500}, false);
    EXPECT_EQ(scalings, made + 1);
}

TEST_F(FrameScalerTest, PicturesInTheirOwnSizeTakeNoRoomBesideTheOthers)
{
    scaler.Get(PictureOf(1, 20), {40, 40}, false);
    for (std::int32_t number = 2; number < 100; ++number)
        scaler.Get(PictureOf(number, 20), {20, 20}, false);
    EXPECT_EQ(scaler.MemoryUsed(), 40 * 40 * 4 + 20 * 20 * 4);
}

TEST_F(FrameScalerTest, ALargePictureIsScaledOnAnotherThreadOneAtATime)
{
    const auto one = PictureOf(1, 20);
    EXPECT_FALSE(scaler.Get(one, Large, false));
    EXPECT_TRUE(scaler.Busy());
    // A hundred more are requested meanwhile; none of them is scaled.
    for (std::int32_t number = 2; number < 102; ++number)
        EXPECT_FALSE(scaler.Get(PictureOf(number, 20), Large, false));
    EXPECT_EQ(scalings, 0);
    Finish();
    EXPECT_FALSE(scaler.Busy());
    EXPECT_EQ(scalings, 1);
    EXPECT_NE(thread, QThread::currentThreadId());
    ASSERT_TRUE(scaler.Get(one, Large, false));
    EXPECT_EQ(scaler.Get(one, Large, false)->image.size(), Large);
    EXPECT_EQ(scalings, 1);
}

TEST_F(FrameScalerTest, MayGoWhileALargePictureIsBeingMade)
{
    std::atomic<bool> stopped = false;
    {
        FrameScaler leaving([] { ADD_FAILURE(); },
                            [&stopped](const Bitmap&, QSize, const std::stop_token& stop) {
                                while (!stop.stop_requested())
                                    std::this_thread::yield();
                                stopped = true;
                                return QImage();
                            });
        leaving.Get(PictureOf(1, 20), Large, false);
    }
    EXPECT_TRUE(stopped);
    QCoreApplication::processEvents();
}

} // namespace

} // namespace voxmate::qt
