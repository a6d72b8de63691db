// Another program's window from which files can be dragged: drag_source ADDRESS...
#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>
#include <QWidget>

namespace
{

class Source : public QWidget
{
public:
    explicit Source(QList<QUrl> files) : files_(std::move(files)) { setWindowTitle(QStringLiteral("Drag from here")); }

protected:
    void mouseMoveEvent(QMouseEvent* /*event*/) override
    {
        auto* data = new QMimeData;
        data->setUrls(files_);
        auto* drag = new QDrag(this);
        drag->setMimeData(data);
        // As file managers do within one disk.
        drag->exec(Qt::CopyAction | Qt::MoveAction | Qt::LinkAction, Qt::MoveAction);
    }

private:
    QList<QUrl> files_;
};

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    QList<QUrl> files;
    for (int i = 1; i < argc; ++i)
        files.append(QUrl(QString::fromUtf8(argv[i])));
    Source source(files);
    source.setGeometry(20, 20, 160, 120);
    source.show();
    return QApplication::exec();
}
