#include "qt/dialogs/FontDialog.h"

#include "qt/dialogs/ModalWindows.h"
#include "qt/widgets/FontScale.h"
#include "qt/widgets/QtText.h"
#include "qt/widgets/Widgets.h"

#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPointer>
#include <QPushButton>
#include <QSpinBox>
#include <QStringListModel>
#include <QVBoxLayout>

namespace voxmate::qt
{

namespace
{

// Device-independent pixels.
constexpr int ListWidth = 300;
constexpr int ListHeight = 200;
constexpr int SampleHeight = 84;

/// The names of the installed families, each once. For a family from several foundries the toolkit lists an entry for
/// each, "Courier [foundry]"; asked for the plain name it takes the best of them.
QStringList InstalledFamilies()
{
    QStringList families;
    for (const QString& family : QFontDatabase::families()) {
        const qsizetype foundry = family.endsWith(u']') ? family.lastIndexOf(QStringLiteral(" [")) : -1;
        const QString name = family.left(foundry);
        if (!QFontDatabase::isPrivateFamily(family) && !families.contains(name, Qt::CaseInsensitive))
            families << name;
    }
    return families;
}

QLabel* LabelOf(const QString& text, QWidget* field)
{
    auto* label = new QLabel(text);
    label->setBuddy(field);
    return label;
}

} // namespace

FontDialog::FontDialog(QWidget* over, const FontSpec& font, int minSize, int maxSize)
    : QDialog(over && over->isVisible() && !over->isMinimized() ? over : nullptr), first_(ToQt(font.Name)),
      families_(InstalledFamilies()), name_(new QLineEdit(first_)), list_(new QListView), size_(new QSpinBox),
      sample_(new QLabel)
{
    setObjectName(QStringLiteral("Font"));
    setWindowTitle(QStringLiteral("Font"));
    setWindowModality(Qt::ApplicationModal);

    name_->setObjectName(QStringLiteral("fontName"));
    name_->setTextMargins(2, 0, 2, 0);
    list_->setObjectName(QStringLiteral("fontList"));
    list_->setModel(new QStringListModel(families_, list_));
    list_->setEditTriggers(QListView::NoEditTriggers);
    list_->setUniformItemSizes(true);
    list_->setMinimumSize(Scaled(ListWidth), Scaled(ListHeight));
    list_->setAccessibleName(QStringLiteral("Fonts"));
    size_->setObjectName(QStringLiteral("fontSize"));
    size_->setRange(minSize, maxSize);
    size_->setValue(qRound(font.Size));
    size_->setSuffix(QStringLiteral(" pt"));
    name_->setMinimumHeight(size_->sizeHint().height());
    sample_->setObjectName(QStringLiteral("fontSample"));
    sample_->setAlignment(Qt::AlignCenter);
    sample_->setTextFormat(Qt::PlainText);
    sample_->setText(QStringLiteral("Good day!"));
    // Fixed, so that neither a large size nor a wide face moves anything.
    sample_->setFixedHeight(SampleHeight);
    sample_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);

    auto* box = new GroupFrame;
    box->ShowTitle(QStringLiteral("Sample"));
    auto* inBox = new QVBoxLayout(box);
    inBox->addWidget(sample_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->setAccessibleName(QStringLiteral("Buttons"));
    for (QAbstractButton* button : buttons->buttons())
        button->setIcon({});
    ok_ = buttons->button(QDialogButtonBox::Ok);
    auto* grid = new QGridLayout(this);
    grid->addWidget(LabelOf(QStringLiteral("&Font:"), name_), 0, 0);
    grid->addWidget(LabelOf(QStringLiteral("&Size:"), size_), 0, 1);
    grid->addWidget(name_, 1, 0);
    grid->addWidget(size_, 1, 1);
    grid->addWidget(list_, 2, 0, 1, 2);
    grid->addWidget(box, 3, 0, 1, 2);
    grid->addWidget(buttons, 4, 0, 1, 2);
    grid->setColumnStretch(0, 1);

    connect(name_, &QLineEdit::textEdited, this, [this](const QString& name) { Typed(name); });
    connect(list_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& index) { Picked(index.row()); });
    connect(list_, &QListView::doubleClicked, this, &QDialog::accept);
    connect(size_, &QSpinBox::valueChanged, this, [this] { ShowSample(); });
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    Typed(first_);
    name_->selectAll();
    name_->setFocus();
    LetCharacterLiveBeside(*this);
}

void FontDialog::Typed(const QString& name)
{
    // Scrolls the list to the first family that begins with the typed text.
    for (qsizetype i = 0; !name.isEmpty() && i < families_.size(); ++i) {
        if (families_[i].startsWith(name, Qt::CaseInsensitive)) {
            const QSignalBlocker quiet(list_->selectionModel());
            const QModelIndex index = list_->model()->index(static_cast<int>(i), 0);
            list_->setCurrentIndex(index);
            list_->scrollTo(index, QListView::PositionAtTop);
            break;
        }
    }
    list_->viewport()->update();
    ShowSample();
}

void FontDialog::Picked(int row)
{
    if (row < 0)
        return;
    name_->setText(families_[row]);
    ShowSample();
}

void FontDialog::ShowSample()
{
    const QString family = Family();
    ok_->setEnabled(!family.isEmpty());
    sample_->setFont(QFont(family.isEmpty() ? name_->text() : family, size_->value()));
}

QString FontDialog::Family() const
{
    const QString name = name_->text().trimmed();
    for (const QString& family : families_) {
        if (family.compare(name, Qt::CaseInsensitive) == 0)
            return family;
    }
    return name.compare(first_, Qt::CaseInsensitive) == 0 ? first_ : QString();
}

FontSpec FontDialog::Chosen() const
{
    return {FromQt(Family()), static_cast<double>(size_->value()), false};
}

std::optional<FontSpec> ShowFontDialog(QWidget* over, const FontSpec& font, int minSize, int maxSize)
{
    // On the heap, because the owner may be destroyed while the dialog is up and then deletes it.
    const QPointer<FontDialog> dialog = new FontDialog(over, font, minSize, maxSize);
    std::optional<FontSpec> chosen;
    if (dialog->exec() == QDialog::Accepted && dialog)
        chosen = dialog->Chosen();
    delete dialog;
    return chosen;
}

} // namespace voxmate::qt
