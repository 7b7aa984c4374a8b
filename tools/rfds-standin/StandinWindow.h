#pragma once

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QWidget>

class QLineEdit;
class QPlainTextEdit;

// The console window: a read-only log and a one-line command input. Everything an
// observer needs is also written to files in the working directory.
class StandinWindow : public QWidget {
    Q_OBJECT
public:
    StandinWindow(const QDir& gameDir, const QStringList& arguments, QWidget* parent = nullptr);

    void Log(const QString& line);

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void ShowCommandLine(const QStringList& arguments);
    void ShowOptions();
    void Submit();
    void RecordEvent(const QString& what);
    void AppendTo(const QString& fileName, const QString& text);

    QDir gameDir_;
    QElapsedTimer clock_;
    QFile keys_;
    QPlainTextEdit* log_;
    QLineEdit* console_;
};
