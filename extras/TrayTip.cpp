#include "extras/TrayTip.h"

#include "base/Text.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace voxmate
{

namespace
{

constexpr int LookInterval = 1000; // milliseconds
constexpr std::uint32_t IconId = 1;
/// What the main window gives the icon as its tip.
constexpr const char* OwnTip = "Voxmate";

} // namespace

TrayTip::TrayTip(Program& program, frmMain& main, Documents& documents)
    : program_(program), main_(main), documents_(documents), tmrTip_(&main, "tmrTip", LookInterval, false)
{
    tmrTip_.Tick = [this] {
        told_ = Show(std::string(OwnTip) + " - " + documents_.Progress() + ": " + documents_.Name()) || told_;
    };
    documents_.Watch([this] {
        tmrTip_.Enabled = documents_.HasDocument();
        if (!documents_.HasDocument() && std::exchange(told_, false))
            Show(OwnTip);
    });
}

// False where there is no icon now.
bool TrayTip::Show(const std::string& text)
{
    TrayIconData data;
    data.window = program_.Host.Windows.WindowHandle(main_.TrayPict);
    data.iconId = IconId;
    data.flags = NIF_TIP;
    const std::string_view whole(text);
    const std::string_view tip = whole.substr(0, WholeUtf8(whole.substr(0, data.tip.size() - 1)));
    std::copy(tip.begin(), tip.end(), data.tip.begin());
    return program_.Host.Windows.Shell_NotifyIconA(NIM_MODIFY, data);
}

} // namespace voxmate
