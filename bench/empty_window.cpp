// An empty window of the toolkit: what any program with a window costs, to compare the idle program with.
#include <QApplication>
#include <QWidget>

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QWidget window;
    window.setWindowTitle("Empty");
    window.resize(400, 300);
    window.show();
    return application.exec();
}
