// quelmark: the editor in a window.
#include <QApplication>
#include <QLibraryInfo>
#include <QTranslator>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "MODEL/MDLINIT.h"
#include "host/HOST.h"
#include "host/qt/QTWINDOW.h"

namespace {

bool HasDisplay() {
    return std::getenv("DISPLAY") != nullptr || std::getenv("WAYLAND_DISPLAY") != nullptr ||
           std::getenv("QT_QPA_PLATFORM") != nullptr;
}

}  // namespace

int main(int argc, char** argv) {
    if (!HasDisplay()) {
        std::fprintf(stderr,
                     "quelmark: there is no display to open a window on; use quelmarkc, which needs none\n");
        return 1;
    }
    std::signal(SIGPIPE, SIG_IGN);  // the window stays when nobody reads any more what is printed
    const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    // The library sees no arguments: all of them belong to the scripts.
    int libraryArguments = 1;
    QApplication application(libraryArguments, argv);
    std::setlocale(LC_NUMERIC, "C");  // the library has set the user's: numbers keep their decimal point
    // The library's own texts, too, are Japanese: file dialogs, the menus of text fields.
    QTranslator japanese;
    if (japanese.load(QStringLiteral("qtbase_ja"), QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QApplication::installTranslator(&japanese);
    }
    quelmark::QtFrame frame;
    quelmark::QtWindow window(frame);
    frame.show();
    window.StartHost();
    const int status = quelmark::HostMain(window, QCoreApplication::applicationFilePath().toStdString(),
                                          arguments, quelmark::ModelLibrariesRegister);
    frame.takeCentralWidget();  // it is not the frame's to delete
    return status;
}
