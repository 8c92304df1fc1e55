// The caption labels of the compound value widgets are made on first use,
// so a widget without a caption has no empty label taking space: the one on
// the left goes first in the row, the one on top first in the column.
#ifndef ORBGUI_CAPTIONLABEL_H
#define ORBGUI_CAPTIONLABEL_H

#include <QBoxLayout>
#include <QLabel>

namespace OrbGui {

inline QLabel *captionLabel(QLabel *&label, QWidget *owner, QBoxLayout *layout, const char *name)
{
    if (!label) {
        label = new QLabel(owner);
        label->setObjectName(QString::fromLatin1(name));
        layout->insertWidget(0, label);
    }
    return label;
}

} // namespace OrbGui

#endif
