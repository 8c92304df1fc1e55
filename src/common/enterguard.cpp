#include "enterguard.h"

#include <QDialog>
#include <QKeyEvent>
#include <QPushButton>

namespace OrbGui {

namespace {

void noDefaultButton(QDialog *dialog)
{
    for (QPushButton *button : dialog->findChildren<QPushButton *>()) {
        button->setDefault(false);
        button->setAutoDefault(false);
    }
}

class EnterGuard : public QObject {
public:
    explicit EnterGuard(QDialog *dialog)
        : QObject(dialog)
        , m_dialog(dialog)
    {
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (watched != m_dialog)
            return false;
        // Before the dialog picks a default button of its own as it shows.
        if (event->type() == QEvent::Show)
            noDefaultButton(m_dialog);
        if (event->type() != QEvent::KeyPress)
            return false;
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() != Qt::Key_Return && key->key() != Qt::Key_Enter)
            return false;
        // A focused push button that did not take the key itself (it is not
        // an auto-default button) is still the one the user means.
        if (auto *button = qobject_cast<QPushButton *>(m_dialog->focusWidget()))
            if (button->isEnabled() && button->isVisible())
                button->click();
        return true;
    }

private:
    QDialog *const m_dialog;
};

} // namespace

void commitOnlyOnEnter(QDialog *dialog)
{
    if (!dialog)
        return;
    dialog->installEventFilter(new EnterGuard(dialog));
    noDefaultButton(dialog);
}

} // namespace OrbGui
