#include <QApplication>

#include "ui/content_view.h"

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Corvane"));
    corvane::ui::ContentView view;
    view.resize(500, 500);
    view.show();
    return QApplication::exec();
}
