#include "extras/HandOver.h"

#include "tests/fakes/FakeActivation.h"
#include "tests/fakes/FakeProcess.h"

#include <gtest/gtest.h>

namespace voxmate
{

namespace
{

class HandOverTest : public ::testing::Test
{
protected:
    fakes::Log log;
    fakes::FakeProcess process{log};
    fakes::FakeActivation activation{log};
    CommandLine line;

    bool HandedOver() { return voxmate::HandedOver(line, process, activation); }
};

TEST_F(HandOverTest, TheOnlyCopyKeepsEverything)
{
    line.Call = {{"/a.txt"}, "stop"};
    line.Quiet = true;
    EXPECT_FALSE(HandedOver());
    EXPECT_TRUE(log.empty());
}

TEST_F(HandOverTest, ASecondCopyHandsItsFilesOverAndIsDone)
{
    process.previousInstance = true;
    line.Call.Files = {"/a.txt", "/b.acs"};
    EXPECT_TRUE(HandedOver());
    line.Call = {{}, "stop"};
    EXPECT_TRUE(HandedOver());
    EXPECT_EQ(log, (fakes::Log{"PassOn /a.txt /b.acs and wait", "PassOn action stop and wait"}));
}

TEST_F(HandOverTest, WhereTheFirstDoesNotAnswerTheSecondGoesOnToSayThatItIsOne)
{
    process.previousInstance = true;
    activation.answered = false;
    line.Call.Files = {"/a.txt"};
    EXPECT_FALSE(HandedOver());
}

TEST_F(HandOverTest, APlainSecondStartBringsTheFirstsWindowAndGoesOnWithoutWaiting)
{
    process.previousInstance = true;
    EXPECT_FALSE(HandedOver());
    EXPECT_EQ(log, (fakes::Log{"PassOn"}));
}

TEST_F(HandOverTest, AQuietSecondStartDisturbsNobody)
{
    process.previousInstance = true;
    line.Quiet = true;
    EXPECT_TRUE(HandedOver());
    EXPECT_TRUE(log.empty());
}

} // namespace

} // namespace voxmate
