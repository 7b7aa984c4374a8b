// A stand-in for the Red Faction dedicated server, for running Hostwarden where the
// game is not installed.
#include "StandinWindow.h"

#include <QApplication>
#include <QFile>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr const char* kUsage =
    "Usage: RF.EXE -dedicated <configuration> [-lanonly] [-port <port>] [-mod <mod>]\n"
    "       RF.EXE --exit <status>   fail at start: say so on stderr and exit with <status>\n"
    "\n"
    "Stands in for the Red Faction dedicated server. It opens a console window titled\n"
    "\"Red Faction Dedicated Server\" whose input line takes typed commands; Enter\n"
    "submits a line and \"say <text>\" shows <text> as a chat line.\n"
    "\n"
    "In its working directory (the game directory) it\n"
    "  writes commandline.txt   its arguments, one a line\n"
    "  reads  dedicated_server.txt and shows what it understood\n"
    "  appends transcript.txt   every submitted console line\n"
    "  writes keys.log          \"<ms since start> <character code>\" per typed character\n"
    "  appends events.txt       \"started pid N\" and \"closed pid N\"\n"
    "\n"
    "Its window is an X11 window, on a Wayland desktop too (through Xwayland); without\n"
    "an X display (DISPLAY not set) it says so and exits with status 2.\n"
    "Console commands for trying a watch over the server: \"crash\" ends it at once with\n"
    "SIGABRT; \"hang\" stops it answering (its window stays, nothing it gets is handled).\n";

void RecordCommandLine(int argc, char** argv) {
    QFile file(QStringLiteral("commandline.txt"));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        std::fprintf(stderr, "Cannot write commandline.txt: %s\n", qPrintable(file.errorString()));
        return;
    }
    for (int i = 0; i < argc; ++i) {
        file.write(argv[i]);
        file.write("\n");
    }
}

// The console must be an X11 window, as the real server's is under Wine: a Wayland-native
// window is out of reach of the X11 side that finds, types into and closes it. False when
// there is no X display at all.
bool UseX11() {
    const char* display = std::getenv("DISPLAY");
    if (!display || !*display) {
        std::fputs("RF.EXE: no X display (DISPLAY is not set); the console window needs X11 "
                   "(Xwayland on a Wayland desktop).\n",
                   stderr);
        return false;
    }
    setenv("QT_QPA_PLATFORM", "xcb", 1);
    return true;
}

} // namespace

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--help") == 0 || std::strcmp(argv[i], "-h") == 0) {
            std::fputs(kUsage, stdout);
            return 0;
        }
        if (std::strcmp(argv[i], "--exit") == 0 && i + 1 < argc) {
            const int status = std::atoi(argv[i + 1]);
            std::fprintf(stderr, "cannot start: asked to exit with status %d\n", status);
            return status;
        }
    }
    // Before QApplication, which takes away the arguments it knows.
    RecordCommandLine(argc, argv);
    if (!UseX11())
        return 2;
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);

    QApplication app(argc, argv);
    StandinWindow window(QDir::current(), arguments);
    window.show();
    window.activateWindow();
    return app.exec();
}
