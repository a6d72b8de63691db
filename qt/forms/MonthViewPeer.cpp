#include "controls/MonthView.h"
#include "qt/forms/CommonPeer.h"
#include "qt/forms/ControlPeers.h"
#include "qt/widgets/MonthCalendar.h"

namespace voxmate::qt
{

namespace
{

class MonthViewPeer : public Common<MonthView, MonthCalendar>
{
public:
    MonthViewPeer(MonthView& month, QWidget* parent) : Common(month, new MonthCalendar(parent))
    {
        Update(Property::Value);
        widget_->OnSelect = [this](const QDate& date) { control_.UserSelect({date.year(), date.month(), date.day()}); };
    }
    ~MonthViewPeer() override { widget_->OnSelect = nullptr; }

    void Update(Property property) override
    {
        UpdateCommon(property);
        if (property == Property::Value)
            widget_->SetDate({control_.Year(), control_.Month(), control_.Day()});
    }
};

} // namespace

std::unique_ptr<WidgetPeer> CreateMonthViewPeer(MonthView& month, QWidget* parent)
{
    return std::make_unique<MonthViewPeer>(month, parent);
}

} // namespace voxmate::qt
