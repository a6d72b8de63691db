// A list in report style: a tree view without a tree, over a model that reads the control's list directly.
#include "controls/ListView.h"
#include "qt/forms/CommonPeer.h"
#include "qt/forms/ControlPeers.h"
#include "qt/widgets/FontScale.h"
#include "qt/widgets/QtText.h"

#include <QAbstractTableModel>
#include <QApplication>
#include <QHash>
#include <QHeaderView>
#include <QMouseEvent>
#include <QPainter>
#include <QProxyStyle>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QTreeView>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <utility>

namespace voxmate::qt
{

namespace
{

// Device-independent pixels.
constexpr int IconSize = 16;
constexpr int RowPadding = 8;
constexpr int HeaderPadding = 12;
constexpr int TextMargin = 6; // on each side of a text
constexpr int PlaceholderMargin = 24;
constexpr int LeastRows = 8;
// Preferred width, in average characters, of a column that takes the remaining space.
constexpr int SpareChars = 32;
constexpr int LeastSpareChars = 12;

/// The desktop's style with wider columns and with the frame that other fields have.
class AirierStyle : public QProxyStyle
{
public:
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override
    {
        if (element == PE_Frame)
            QApplication::style()->drawPrimitive(element, option, painter, widget);
        else
            QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override
    {
        return metric == PM_FocusFrameHMargin || metric == PM_HeaderMargin
                   ? TextMargin
                   : QProxyStyle::pixelMetric(metric, option, widget);
    }
};

class RowModel : public QAbstractTableModel
{
public:
    RowModel(ListView& list, const IconSet& icons, QWidget& view)
        : QAbstractTableModel(&view), list_(&list), icons_(icons), view_(view),
          columns_(static_cast<int>(list.ColumnHeaders().size()))
    {
    }

    /// Takes over the rows that the control has now.
    void Refresh()
    {
        beginResetModel();
        rows_ = list_->Rows();
        endResetModel();
    }
    /// Must be called before the control is destroyed; the view may exist a little longer.
    void Detach() { list_ = nullptr; }

    int RowOf(std::size_t item) const
    {
        const auto found = std::find(rows_.begin(), rows_.end(), item);
        return found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
    }
    std::size_t ItemAt(int row) const
    {
        return row < 0 || static_cast<std::size_t>(row) >= rows_.size() ? 0 : rows_[static_cast<std::size_t>(row)];
    }

    int rowCount(const QModelIndex& parent) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(rows_.size());
    }
    int columnCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : columns_; }

    QVariant data(const QModelIndex& index, int role) const override
    {
        // Between a change of the list and the refresh, rows may no longer exist.
        const std::size_t number = ItemAt(index.row());
        if (!list_ || number < 1 || number > list_->ListItems().size())
            return {};
        const ListItem& item = list_->ListItems()[number - 1];
        const ImageList::Image* image =
            index.column() == 0 && list_->SmallIcons ? list_->SmallIcons->At(item.SmallIcon) : nullptr;
        const auto text = [&] { return ToQt(item.TextOf(static_cast<std::size_t>(index.column()))); };
        switch (role) {
        case Qt::DisplayRole:
            return text();
        case Qt::ToolTipRole:
            if (image)
                return ToQt(image->Description);
            return PlainToolTip(text());
        case Qt::AccessibleTextRole:
            return image ? text() + QStringLiteral(", ") + ToQt(image->Description) : text();
        case Qt::DecorationRole:
            return image ? QVariant(icons_.Pixmap(ToQt(image->Picture), Scaled(IconSize), view_.devicePixelRatioF(),
                                                  view_.palette().color(QPalette::Text)))
                         : QVariant();
        default:
            return {};
        }
    }

    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        if (!list_ || orientation != Qt::Horizontal || section < 0 || section >= columns_)
            return {};
        if (role == Qt::TextAlignmentRole)
            return QVariant(Qt::AlignLeft | Qt::AlignVCenter);
        return role == Qt::DisplayRole ? ToQt(list_->ColumnHeaders()[static_cast<std::size_t>(section)].Text)
                                       : QVariant();
    }

private:
    ListView* list_;
    const IconSet& icons_;
    const QWidget& view_;
    const int columns_;
    std::vector<std::uint32_t> rows_; ///< numbers of the items shown, in order
};

/// A round picture on a disc of a field's background colour, for which it was drawn, so that it also stands out in a
/// selected row.
QPixmap OnField(const QPixmap& picture, const QColor& field)
{
    QPixmap disc(picture.size());
    disc.setDevicePixelRatio(picture.devicePixelRatio());
    disc.fill(Qt::transparent);
    QPainter painter(&disc);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(field);
    painter.drawEllipse(QRectF(QPointF(0, 0), picture.deviceIndependentSize()));
    painter.drawPixmap(0, 0, picture);
    return disc;
}

/// Makes rows of a comfortable height. In the selected row a picture keeps its colours. No cell shows a focus frame,
/// because a row is one unit.
class RowDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        const QSize hint = QStyledItemDelegate::sizeHint(option, index);
        return {hint.width(), std::max(option.fontMetrics.height(), Scaled(IconSize)) + RowPadding};
    }

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        option->state &= ~QStyle::State_HasFocus;
        const auto pixmap = index.data(Qt::DecorationRole).value<QPixmap>();
        if (pixmap.isNull())
            return;
        option->icon = IconOf(pixmap, option->palette.color(QPalette::Base));
    }

private:
    /// Far more than the pictures of any list.
    static constexpr int MostIcons = 16;

    mutable QHash<qint64, QIcon> icons_; ///< by the picture's key
    mutable QColor field_;               ///< for which they were made

    /// Kept, because the toolkit's cache remembers every picture that it has ever drawn.
    QIcon IconOf(const QPixmap& pixmap, const QColor& field) const
    {
        if (field != field_ || icons_.size() == MostIcons)
            icons_.clear();
        field_ = field;
        QIcon& icon = icons_[pixmap.cacheKey()];
        if (icon.isNull()) {
            icon.addPixmap(pixmap, QIcon::Normal);
            icon.addPixmap(OnField(pixmap, field), QIcon::Selected);
        }
        return icon;
    }
};

class RowView : public QTreeView
{
public:
    explicit RowView(QWidget* parent) : QTreeView(parent)
    {
        setRootIsDecorated(false);
        setItemsExpandable(false);
        setUniformRowHeights(true);
        setAlternatingRowColors(true);
        setAllColumnsShowFocus(true);
        setSelectionMode(QAbstractItemView::SingleSelection);
        setEditTriggers(QAbstractItemView::NoEditTriggers);
        setTextElideMode(Qt::ElideRight);
        setItemDelegate(new RowDelegate(this));
        auto* style = new AirierStyle;
        style->setParent(this);
        setStyle(style);
        header()->setStyle(style);
        header()->setMinimumHeight(fontMetrics().height() + HeaderPadding);
        header()->setSectionsClickable(true);
        header()->setSectionsMovable(false);
        header()->setHighlightSections(false);
        header()->setStretchLastSection(false);
    }

    QString Placeholder; ///< shown while there is no row
    /// Called when the user selects a row, or presses the mouse on the selected one.
    std::function<void(int row)> OnSelect;

    QSize sizeHint() const override
    {
        return {WidthWith(SpareChars), 2 * frameWidth() + header()->minimumHeight() + LeastRows * RowHeight()};
    }
    QSize minimumSizeHint() const override
    {
        return {WidthWith(LeastSpareChars), QTreeView::minimumSizeHint().height()};
    }

    /// Flags that make an item the only one selected.
    QItemSelectionModel::SelectionFlags Selecting() const
    {
        return selectionBehavior() == SelectRows ? QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows
                                                 : QItemSelectionModel::ClearAndSelect;
    }

    /// Width of a column for so many average characters.
    int WidthOf(int chars) const { return chars * fontMetrics().horizontalAdvance(u'0') + 4 * TextMargin; }
    int RowHeight() const { return std::max(fontMetrics().height(), Scaled(IconSize)) + RowPadding; }

protected:
    void paintEvent(QPaintEvent* event) override
    {
        QTreeView::paintEvent(event);
        if (Placeholder.isEmpty() || model()->rowCount() > 0)
            return;
        QPainter painter(viewport());
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(viewport()->rect().adjusted(PlaceholderMargin, PlaceholderMargin, -PlaceholderMargin, 0),
                         Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, Placeholder);
    }

    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override
    {
        QTreeView::currentChanged(current, previous);
        if (current.isValid() && current.row() != previous.row())
            Tell(current.row());
    }

    // On focus the toolkit makes the first row current, but nobody has selected it.
    void focusInEvent(QFocusEvent* event) override
    {
        const auto tell = std::exchange(OnSelect, nullptr);
        QTreeView::focusInEvent(event);
        OnSelect = tell;
    }

    void mousePressEvent(QMouseEvent* event) override
    {
        told_ = false;
        QTreeView::mousePressEvent(event);
        const QModelIndex pressed = indexAt(event->position().toPoint());
        if (!told_ && pressed.isValid() && event->button() == Qt::LeftButton)
            Tell(pressed.row());
    }

    // A selected row stays selected, whichever keys are held and wherever beside it the user clicks.
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index, const QEvent* event) const override
    {
        if (!index.isValid() || (event && event->type() == QEvent::MouseButtonRelease))
            return QItemSelectionModel::NoUpdate;
        return Selecting();
    }

private:
    /// The list's width when a column that takes the remaining space has room for so many average characters.
    int WidthWith(int spareChars) const
    {
        int width = 2 * frameWidth() + style()->pixelMetric(QStyle::PM_ScrollBarExtent);
        for (int column = 0; column < header()->count(); ++column)
            width += header()->sectionResizeMode(column) == QHeaderView::Stretch ? WidthOf(spareChars)
                                                                                 : header()->sectionSize(column);
        return width;
    }

    void Tell(int row)
    {
        told_ = true;
        // Copied, because the form may be destroyed inside the call.
        if (const auto tell = OnSelect)
            tell(row);
    }

    bool told_ = false;
};

class ListViewPeer : public Common<ListView, RowView>
{
public:
    ListViewPeer(ListView& list, const IconSet& icons, QWidget* parent)
        : Common(list, new RowView(parent)), model_(new RowModel(list, icons, *widget_))
    {
        widget_->setModel(model_);
        QHeaderView& header = *widget_->header();
        const std::vector<ListView::ColumnHeader>& columns = control_.ColumnHeaders();
        for (int column = 0; column < static_cast<int>(columns.size()); ++column) {
            const ListView::ColumnHeader& one = columns[static_cast<std::size_t>(column)];
            if (one.Chars == 0) {
                header.setSectionResizeMode(column, QHeaderView::Stretch);
                continue;
            }
            const int width = widget_->WidthOf(one.Chars) + (column == 0 && control_.SmallIcons ? Scaled(IconSize) : 0);
            header.setSectionResizeMode(column, QHeaderView::Interactive);
            header.resizeSection(column, std::max(width, header.sectionSizeHint(column)));
        }
        widget_->Placeholder = ToQt(control_.PlaceholderText);
        Update(Property::Value);
        Refresh();
        widget_->OnSelect = [this](int row) {
            if (!quiet_)
                control_.UserItemClick(model_->ItemAt(row));
        };
        // The toolkit tells the second of two quick clicks as a double click only; it counts as a click like any other.
        for (const auto clicked : {&QHeaderView::sectionClicked, &QHeaderView::sectionDoubleClicked})
            QObject::connect(&header, clicked, &context_, [this](int column) { control_.UserColumnClick(column + 1); });
    }
    ~ListViewPeer() override
    {
        widget_->OnSelect = nullptr;
        model_->Detach();
    }

    void Update(Property property) override
    {
        UpdateCommon(property);
        if (property == Property::Value)
            widget_->setSelectionBehavior(control_.FullRowSelect ? QAbstractItemView::SelectRows
                                                                 : QAbstractItemView::SelectItems);
        else if (property == Property::Items)
            Later();
        else if (property == Property::Selection && !waiting_)
            Select();
    }

private:
    /// Refreshes after the handler that changes the list has ended, so that many changes cost one refresh.
    void Later()
    {
        if (!std::exchange(waiting_, true))
            QMetaObject::invokeMethod(
                &context_, [this] { Refresh(); }, Qt::QueuedConnection);
    }

    void Refresh()
    {
        waiting_ = false;
        const int place = widget_->verticalScrollBar()->value();
        quiet_ = true;
        model_->Refresh();
        quiet_ = false;
        // A list without a row has nothing else for a screen reader.
        widget_->setAccessibleDescription(model_->rowCount({}) == 0 ? widget_->Placeholder : QString());
        QHeaderView& header = *widget_->header();
        header.setSortIndicatorShown(control_.Sorted);
        if (control_.Sorted)
            header.setSortIndicator(control_.SortKey,
                                    control_.Order == SortOrder::Ascending ? Qt::AscendingOrder : Qt::DescendingOrder);
        widget_->doItemsLayout();
        widget_->verticalScrollBar()->setValue(place);
        Select();
    }

    void Select()
    {
        const QModelIndex index = model_->index(model_->RowOf(control_.SelectedItem()), 0);
        quiet_ = true;
        if (index.isValid()) {
            // Both are set, because a row may be current without being selected.
            widget_->selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
            widget_->selectionModel()->select(index, widget_->Selecting());
            widget_->scrollTo(index);
        } else {
            widget_->selectionModel()->clear();
        }
        quiet_ = false;
    }

    RowModel* model_;
    bool waiting_ = false; ///< a refresh is queued
    bool quiet_ = false;   ///< the selection is changed by the program, not by the user
};

} // namespace

std::unique_ptr<WidgetPeer> CreateListViewPeer(ListView& list, const IconSet& icons, QWidget* parent)
{
    return std::make_unique<ListViewPeer>(list, icons, parent);
}

} // namespace voxmate::qt
