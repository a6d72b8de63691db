// What the computer runs on, from folders as the kernel has them.
#include "platform/linux/system/LinuxPower.h"
#include "tests/unit/linux/OwnFolder.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace voxmate::linux_platform
{

namespace
{

class PowerTest : public OwnFolder
{
protected:
    void Source(const std::string& name, const std::map<std::string, std::string>& files)
    {
        for (const auto& [file, text] : files)
            Write(folder / name / file, text + "\n");
    }
    bool OnBattery() { return LinuxPower(folder).OnBattery(); }
};

TEST_F(PowerTest, ABatteryThatIsBeingEmptiedMeansSoUnlessAnotherSourceIsConnected)
{
    Source("BAT0", {{"type", "Battery"}, {"status", "Discharging"}});
    EXPECT_TRUE(OnBattery());
    Source("AC", {{"type", "Mains"}, {"online", "0"}});
    EXPECT_TRUE(OnBattery());
    Source("AC", {{"type", "Mains"}, {"online", "1"}});
    EXPECT_FALSE(OnBattery());
}

TEST_F(PowerTest, AFullOneDoesNot)
{
    Source("BAT0", {{"type", "Battery"}, {"status", "Full"}});
    EXPECT_FALSE(OnBattery());
}

TEST_F(PowerTest, OfTwoOneIsEnough)
{
    Source("BAT0", {{"type", "Battery"}, {"status", "Not charging"}});
    Source("BAT1", {{"type", "Battery"}, {"scope", "System"}, {"status", "Discharging"}});
    EXPECT_TRUE(OnBattery());
}

TEST_F(PowerTest, AMousesBatteryIsNotTheComputers)
{
    Source("hidpp_battery_0", {{"type", "Battery"}, {"scope", "Device"}, {"status", "Discharging"}});
    EXPECT_FALSE(OnBattery());
}

TEST_F(PowerTest, NothingKnownIsNoBattery)
{
    EXPECT_FALSE(OnBattery());
    EXPECT_FALSE(LinuxPower(folder / "missing").OnBattery());
}

} // namespace
} // namespace voxmate::linux_platform
