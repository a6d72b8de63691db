// What the peers of all controls that are widgets have in common.
#pragma once

#include "qt/forms/ControlPeers.h"
#include "qt/widgets/QtText.h"

#include <QEvent>
#include <QObject>
#include <QString>
#include <QTextDocument>
#include <QWidget>

#include <functional>
#include <utility>

namespace voxmate::qt
{

/// Text for a tool tip, shown as plain text even where it looks like markup.
inline QString PlainToolTip(const QString& text)
{
    return Qt::mightBeRichText(text) ? text.toHtmlEscaped() : text;
}

/// Calls `act` after the desktop's font has changed and the window has received it, as long as the parent lives.
class FontChange : public QObject
{
public:
    FontChange(QObject* parent, QWidget& window, std::function<void()> act) : QObject(parent), act_(std::move(act))
    {
        window.installEventFilter(this);
    }

    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() == QEvent::ApplicationFontChange)
            QMetaObject::invokeMethod(this, act_, Qt::QueuedConnection);
        return false;
    }

private:
    std::function<void()> act_;
};

/// The base of all widget peers. `C` is the control, `W` its widget. The form's window owns the widget, which outlives
/// the peer when the form is destroyed inside one of the widget's own events.
template <class C, class W>
class Common : public WidgetPeer
{
public:
    Common(C& control, W* widget) : control_(control), widget_(widget)
    {
        control_.SetPeer(this);
        widget_->setObjectName(ToQt(control_.Name));
        UpdateCommon(Property::Enabled);
        UpdateCommon(Property::Visible);
        UpdateCommon(Property::ToolTipText);
        UpdateCommon(Property::AccessibleDescription);
        UpdateAccessibleName();
    }

    QWidget* Widget() const override { return widget_; }

    void Update(Property property) override { UpdateCommon(property); }

protected:
    void UpdateCommon(Property property)
    {
        switch (property) {
        case Property::Enabled:
            widget_->setEnabled(control_.Enabled);
            break;
        case Property::Visible:
            widget_->setVisible(control_.Visible);
            break;
        case Property::ToolTipText:
            widget_->setToolTip(PlainToolTip(ToQt(control_.ToolTipText)));
            UpdateAccessibleName();
            break;
        case Property::AccessibleDescription:
            if (const QString text = ToQt(control_.AccessibleDescription); text != widget_->accessibleDescription())
                widget_->setAccessibleDescription(text);
            break;
        case Property::Caption:
            UpdateAccessibleName();
            break;
        default:
            break;
        }
    }

    C& control_;
    W* widget_;
    /// Receives the widget's signals, which are disconnected when the peer is destroyed.
    QObject context_;

private:
    /// Whether an ampersand in the caption marks an access key; in a label without a buddy it is plain text.
    bool HasAccessKey() const
    {
        if constexpr (requires { control_.Buddy; })
            return control_.Buddy != nullptr;
        return true;
    }

    void UpdateAccessibleName()
    {
        QString name = ToQt(control_.AccessibleName);
        if constexpr (requires { control_.Caption; }) {
            if (const QString caption = ToQt(control_.Caption); !caption.isEmpty())
                name = HasAccessKey() ? WithoutAccessKey(caption) : caption;
        }
        if (name.isEmpty())
            name = ToQt(control_.ToolTipText);
        widget_->setAccessibleName(name);
    }
};

} // namespace voxmate::qt
