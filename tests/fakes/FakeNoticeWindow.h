// The notice window's fake.
#pragma once

#include "modules/Windows.h"
#include "tests/fakes/Log.h"

namespace voxmate::fakes
{

class FakeNoticeWindow : public NoticeWindow
{
public:
    explicit FakeNoticeWindow(Log& log) : log_(log) {}
    bool visible = false;

    bool Visible() const override { return visible; }
    void ShowNotice(const NoticeText& text) override
    {
        visible = true;
        log_.push_back("Notice " + std::to_string(text.Id) + " " + text.Heading + "|" + text.Title + "|" + text.Date +
                       "|" + text.Time + "|" + text.Description);
    }

private:
    Log& log_;
};

} // namespace voxmate::fakes
