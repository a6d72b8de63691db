// A form's window: its layout, a peer for each of its controls, its menus and its status bar.
#pragma once

#include "controls/Form.h"
#include "qt/forms/ControlPeers.h"

#include <QObject>
#include <QPointer>

#include <map>
#include <memory>
#include <vector>

class QBoxLayout;
class QLayout;

namespace voxmate::qt
{

class FormWindow;

class QtFormPeer : public FormPeer
{
public:
    /// `icons` must outlive the window; the window is first centred on `owner` (nullptr: on the screen).
    QtFormPeer(Form& form, const IconSet& icons, QWidget* owner);
    ~QtFormPeer() override;

    void Show() override;
    void Hide() override;
    void Update(Property property) override;
    void Activate() override;
    void PopupMenu(Menu& menu, Control* at) override;

    QWidget* Window() const { return window_; }

private:
    FormWindow* MakeFormWindow();
    QWidget* MakeSplash();
    /// Fills `layout` with the children of a row or a column and makes their widgets.
    void Fill(QBoxLayout& layout, const Layout& arrangement);
    QLayout* Build(const Layout& arrangement);
    QLayout* BuildAll();
    QWidget* MakeItem(const Layout& item);
    void TakeFiles();
    void MakeMenus(FormWindow* bar);
    void SetTabOrder();
    void ConnectLabels();
    void Place();
    void SettleSize();
    QWidget* WidgetOf(const Control* control) const;

    Form& form_;
    const IconSet& icons_;
    QPointer<QWidget> owner_;
    QWidget* window_ = nullptr;
    QWidget* content_ = nullptr;
    std::map<const Control*, std::unique_ptr<WidgetPeer>> widgets_;
    std::map<const Menu*, std::unique_ptr<MenuPeer>> menus_;
    std::vector<std::unique_ptr<Peer>> timers_;
    std::vector<std::unique_ptr<FileDrops>> drops_;
    bool placed_ = false;
    QObject context_; ///< for what follows the desktop's font as long as this peer lives
};

} // namespace voxmate::qt
