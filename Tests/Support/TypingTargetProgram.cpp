// A program to type into: a window with a line edit. It prints "ready" when it becomes active. When the text changes,
// it prints its length and its last characters; when the clipboard changes, the length of the clipboard text.
//
//   TypingTargetProgram [--password] [--copies COUNT]     puts "x" on the clipboard, COUNT times

#include <QtWidgets>
#include <cstdio>

using namespace Qt::StringLiterals;

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const auto print = [](const QString& text) {
        std::printf("%s\n", qPrintable(text));
        std::fflush(stdout);
    };
    QLineEdit line;
    line.setMaxLength(10'000'000);
    if (arguments.contains("--password"))
        line.setEchoMode(QLineEdit::Password);
    if (const qsizetype copies = arguments.indexOf("--copies"); copies > 0)
        QGuiApplication::clipboard()->setText(QString(arguments.value(copies + 1).toInt(), 'x'));
    QObject::connect(&line, &QLineEdit::textChanged, &line,
        [&](const QString& text) { print(u"%1 %2"_s.arg(text.size()).arg(text.right(20))); });
    // On a busy machine Qt takes a late answer to an earlier request for this one, and reads nothing.
    QTimer again;
    again.setSingleShot(true);
    const auto printClipboard = [&] {
        const qsizetype size = QGuiApplication::clipboard()->text().size();
        print(u"clipboard %1"_s.arg(size));
        if (size == 0)
            again.start(100);
    };
    QObject::connect(&again, &QTimer::timeout, &line, printClipboard);
    QObject::connect(QGuiApplication::clipboard(), &QClipboard::dataChanged, &line, printClipboard);
    QObject::connect(&application, &QGuiApplication::applicationStateChanged, &line, [&](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive)
            print("ready");
    });
    line.show();
    line.activateWindow();
    line.setFocus();
    return QApplication::exec();
}
