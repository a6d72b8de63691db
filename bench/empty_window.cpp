// Shows an empty window of the toolkit: the cost of any program with a window, to compare the idle program with.
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
