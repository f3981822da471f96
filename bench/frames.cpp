// tavoran-frames pointer|tick|pan COUNT: paints that many frames and ends, for counting instructions.

#include "scenes/LiveChart.h"

#include <QApplication>

#include <cstring>

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    if (argc != 3)
        return 2;
    LiveChart chart(QSize(1600, 900), 5'000, 7.0);
    const int count = QByteArray(argv[2]).toInt();
    for (int i = 0; i < count; ++i) {
        if (std::strcmp(argv[1], "pointer") == 0)
            chart.pointerFrame();
        else if (std::strcmp(argv[1], "tick") == 0)
            chart.tickFrame();
        else
            chart.panFrame();
    }
    return 0;
}
