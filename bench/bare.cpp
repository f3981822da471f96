// The least a program of this kind does: an empty window with three docks and a document area. Ends
// after its first paint and prints nothing; its run time is the floor for start-up.

#include <QApplication>
#include <QDockWidget>
#include <QMainWindow>
#include <QMdiArea>
#include <QTimer>

namespace {

class BareWindow final : public QMainWindow {
protected:
    void paintEvent(QPaintEvent* event) override
    {
        QMainWindow::paintEvent(event);
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
    }
};

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    BareWindow window;
    window.resize(1280, 800);
    window.setCentralWidget(new QMdiArea);
    for (const Qt::DockWidgetArea area :
        {Qt::LeftDockWidgetArea, Qt::LeftDockWidgetArea, Qt::BottomDockWidgetArea})
        window.addDockWidget(area, new QDockWidget);
    window.show();
    return QApplication::exec();
}
