#include "qt/forms/PlacedFormPeer.h"

#include "qt/alerts/PlacedLabel.h"
#include "qt/forms/CommonPeer.h"
#include "qt/system/QtTray.h"
#include "qt/widgets/QtText.h"

#include <QApplication>

#include <cmath>
#include <utility>

namespace voxmate::qt
{

namespace
{

int ToPixels(std::int32_t twips)
{
    return static_cast<int>(std::lround(twips / TwipsPerPixel()));
}

class PlacedLabelPeer : public Common<Label, PlacedLabel>
{
public:
    PlacedLabelPeer(Label& label, PlacedWindow* parent) : Common(label, new PlacedLabel(parent))
    {
        Update(Property::Font);
        Update(Property::Place);
        Update(Property::Caption);
        widget_->OnClick = [this] { control_.UserClick(); };
    }
    ~PlacedLabelPeer() override { widget_->OnClick = nullptr; }

    void Update(Property property) override
    {
        UpdateCommon(property);
        if (property == Property::Caption) {
            widget_->setText(ToQt(control_.Caption));
            // Screen readers announce the window by its text, without the line ends that are not to be read out. An
            // ampersand in the text is read as it is.
            const QString said = widget_->text().replace(QStringLiteral("\r\n"), QStringLiteral("\n")).trimmed();
            widget_->setAccessibleName(said);
            widget_->window()->setAccessibleName(said);
        } else if (property == Property::Font) {
            widget_->setFont(ToQFont(control_.Font, QApplication::font()));
        } else if (property == Property::Place) {
            const Rect& place = control_.Place;
            widget_->setGeometry(place.x, place.y, place.width, place.height);
        }
    }
};

} // namespace

PlacedFormPeer::PlacedFormPeer(PlacedForm& form) : form_(form), window_(new PlacedWindow)
{
    window_->setObjectName(ToQt(form_.Name));
    window_->OnClick = [this] { form_.UserClick(); };
    Update(Property::Caption);
    Update(Property::Place);
    for (Control* control : form_.Controls()) {
        if (auto* label = dynamic_cast<Label*>(control))
            peers_.push_back(std::make_unique<PlacedLabelPeer>(*label, window_));
    }
    // Timers last, because a tick must find the form complete.
    for (Control* control : form_.Controls()) {
        if (auto* timer = dynamic_cast<Timer*>(control))
            peers_.push_back(CreateTimerPeer(*timer));
    }
}

PlacedFormPeer::~PlacedFormPeer()
{
    // The form may be destroyed inside one of its window's own events, so the window is deleted later.
    peers_.clear();
    window_->OnClick = nullptr;
    window_->hide();
    window_->deleteLater();
}

void PlacedFormPeer::Show()
{
    window_->Display();
}

void PlacedFormPeer::Hide()
{
    window_->hide();
}

void PlacedFormPeer::Update(Property property)
{
    if (property == Property::Caption)
        window_->setWindowTitle(ToQt(form_.Caption));
    else if (property == Property::Place)
        window_->Place(
            QRect(ToPixels(form_.Left()), ToPixels(form_.Top()), ToPixels(form_.Width()), ToPixels(form_.Height())));
}

void PlacedFormPeer::Activate()
{
    window_->raise();
}

void PlacedFormPeer::PopupMenu(Menu& /*menu*/, Control* /*at*/) {}

} // namespace voxmate::qt
