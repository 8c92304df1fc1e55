// The layout shared by the integer and floating-point sliders: the inner
// slider with the minimum and maximum labels, vertical (maximum on top) or
// horizontal (labels below, minimum left). Rebuilding replaces the layouts
// only; the slider and the labels stay.
#ifndef ORBGUI_SLIDERFRAME_H
#define ORBGUI_SLIDERFRAME_H

#include <QBoxLayout>
#include <QLabel>
#include <QSlider>

namespace OrbGui {

inline void layOutSliderFrame(QWidget *frame, QSlider *slider, QLabel *labelMin, QLabel *labelMax,
                              Qt::Orientation orientation)
{
    delete frame->layout();
    slider->setOrientation(orientation);
    auto *layoutV = new QVBoxLayout(frame);
    layoutV->setObjectName(QStringLiteral("layoutV"));
    layoutV->setContentsMargins(0, 0, 0, 0);
    layoutV->setSpacing(0);
    auto *layoutH = new QHBoxLayout;
    layoutH->setObjectName(QStringLiteral("layoutH"));
    layoutH->setContentsMargins(0, 0, 0, 0);
    if (orientation == Qt::Vertical) {
        layoutH->setSpacing(0);
        layoutV->addWidget(labelMax, 0, Qt::AlignHCenter | Qt::AlignBottom);
        layoutH->addWidget(slider);
        layoutV->addLayout(layoutH, 1);
        layoutV->addWidget(labelMin, 0, Qt::AlignHCenter | Qt::AlignBottom);
    } else {
        layoutH->setSpacing(6);
        layoutV->addWidget(slider);
        layoutH->addWidget(labelMin, 0, Qt::AlignLeft);
        layoutH->addStretch(1);
        layoutH->addWidget(labelMax, 0, Qt::AlignRight);
        layoutV->addLayout(layoutH);
    }
}

} // namespace OrbGui

#endif
