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

/// Text for a tool tip: plain, even where it looks like markup.
inline QString PlainToolTip(const QString& text)
{
    return Qt::mightBeRichText(text) ? text.toHtmlEscaped() : text;
}

/// Acts when the desktop's font has changed and the window has it, as long as its parent lives.
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

/// What all widgets have in common. `C` is the control, `W` its widget, which the form's window owns: it outlives the
/// peer when the form goes in the middle of one of the widget's own events.
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
        case Property::Caption:
            UpdateAccessibleName();
            break;
        default:
            break;
        }
    }

    C& control_;
    W* widget_;
    /// Receiver of the widget's signals: they end with the peer.
    QObject context_;

private:
    /// Whether an ampersand in the caption is a mark; in a label that names no control it is text.
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
