// Plays the user's part in a modal dialog: the test arms it before the call
// that opens the dialog, and it runs inside the dialog's own event loop.
#ifndef ORBGUI_TESTS_MODALTEST_H
#define ORBGUI_TESTS_MODALTEST_H

#include <QApplication>
#include <QMessageBox>
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

// Closes every message box that opens while it lives, and counts them: for
// tests where no message may come.
struct MessageBoxCounter {
    MessageBoxCounter()
    {
        timer.setInterval(10);
        QObject::connect(&timer, &QTimer::timeout, [this] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                ++count;
                box->close();
            }
        });
        timer.start();
    }
    QTimer timer;
    int count = 0;
};

#endif
