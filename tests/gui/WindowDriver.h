#pragma once
// Driving the main window as a person does: a window opened over an image and made active, its
// fields by number, the widget a key goes to, and a catcher that answers the program's messages.

#include "core/Clock.h"
#include "gui/MainWindow.h"
#include "gui/PageCanvas.h"
#include "support/ExampleImage.h"
#include "toolkit/MessageWindow.h"
#include "toolkit/WaitWindow.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

#include <memory>

namespace ff::testsupport {

inline std::unique_ptr<gui::MainWindow> openActive(const QString &image, const QStringList &arguments = {},
                                                   const Clock &clock = Clock::system())
{
    auto w = std::make_unique<gui::MainWindow>(ParseCommandLine(image, arguments), loadImage(image), clock);
    w->show();
    w->activateWindow();
    if (!QTest::qWaitForWindowActive(w.get()))
        qWarning("window not active");
    return w;
}

// The example `name` built in `folder`, filled with its sample records and open in a window on the
// screen with record 1: what a test compares a printed, exported or browsed record with. `error`
// says what went wrong when the window is missing.
struct SampleWindow {
    QString imagePath;
    std::unique_ptr<gui::MainWindow> window;
    QString error;
};

inline SampleWindow openSampleWindow(const QString &name, const QString &folder)
{
    SampleWindow s;
    s.imagePath = buildExample(name, folder).path;
    s.error = loadSamples(name, s.imagePath);
    if (!s.error.isEmpty())
        return s;
    DesignLoad load = loadImage(s.imagePath);
    if (!load.complete()) {
        s.error = QStringLiteral("the design of %1 did not load").arg(s.imagePath);
        return s;
    }
    s.window = std::make_unique<gui::MainWindow>(ParseCommandLine(s.imagePath, {}), std::move(load));
    s.window->show();
    if (!QTest::qWaitForWindowExposed(s.window.get())) {
        s.error = QStringLiteral("the window did not come up");
        s.window.reset();
    }
    return s;
}

inline QLineEdit *field(gui::MainWindow &w, int i) { return qobject_cast<QLineEdit *>(w.canvas()->fieldWidget(i)); }

// Activates `window` as a person would by clicking it and returns the widget that then has the
// keyboard focus (the window itself when none has).
inline QWidget *focusedWidgetOf(QWidget *window)
{
    window->activateWindow();
    // The activation arrives through the event loop.
    if (!QTest::qWaitFor([window] { return window->isActiveWindow(); }, 2000))
        qWarning("%s did not become active", window->metaObject()->className());
    QWidget *focused = QApplication::focusWidget();
    return focused && focused->window() == window ? focused : window;
}

// Answers every program message box that comes up with OK, keeping its text and caption, and
// counts the messages that came up while a wait window still stood on the screen.
struct MessageCatcher {
    QStringList texts, captions;
    int overWaitWindow = 0;
    QTimer timer;
    MessageCatcher()
    {
        timer.setInterval(5);
        QObject::connect(&timer, &QTimer::timeout, [this] {
            auto *box = qobject_cast<toolkit::MessageWindow *>(QApplication::activeModalWidget());
            if (!box || !box->isVisible())
                return;
            texts << box->messageText();
            QString caption;
            for (QLabel *label : box->findChildren<QLabel *>())
                if (label->text() != box->messageText())
                    caption += label->text();
            captions << caption;
            for (QWidget *top : QApplication::topLevelWidgets())
                if (qobject_cast<toolkit::WaitWindow *>(top) && top->isVisible())
                    ++overWaitWindow;
            box->okButton()->click();
        });
        timer.start();
    }
};

} // namespace ff::testsupport
