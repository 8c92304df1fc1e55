// Plays the user's part in a modal dialog: the test arms it before the call
// that opens the dialog, and it runs inside the dialog's own event loop.
#ifndef ORBGUI_TESTS_MODALTEST_H
#define ORBGUI_TESTS_MODALTEST_H

#include <QApplication>
#include <QTimer>
#include <QWidget>

#include <functional>

// Runs `act` once on the next modal dialog that opens.
inline void onNextModal(std::function<void(QWidget *)> act)
{
    auto *timer = new QTimer;
    timer->setInterval(20);
    QObject::connect(timer, &QTimer::timeout, [timer, act] {
        if (QWidget *modal = QApplication::activeModalWidget()) {
            timer->stop();
            timer->deleteLater();
            act(modal);
        }
    });
    timer->start();
}

#endif
