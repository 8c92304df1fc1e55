// The private part that the compound value widgets share (QtOrbSpinBox,
// QtOrbSliderSpinBox, QtOrbGainSlider), as Qt's spin boxes share theirs: the
// row inside a column, the caption labels made on first use, and the rule
// that a drag of the slider announces one value, on release.
#ifndef ORBGUI_COMPOUNDVALUE_P_H
#define ORBGUI_COMPOUNDVALUE_P_H

#include <QBoxLayout>
#include <QLabel>
#include <QVector>

namespace OrbGui {

class CompoundValuePrivate {
public:
    CompoundValuePrivate() = default;
    virtual ~CompoundValuePrivate() = default;
    CompoundValuePrivate(const CompoundValuePrivate &) = delete;
    CompoundValuePrivate &operator=(const CompoundValuePrivate &) = delete;

    // "layoutH" (spacing 6, no margins) inside "layoutV", the owner's layout.
    void initRows(QWidget *q)
    {
        owner = q;
        layoutV = new QVBoxLayout(q);
        layoutV->setObjectName(QStringLiteral("layoutV"));
        layoutV->setContentsMargins(0, 0, 0, 0);
        layoutV->setSpacing(6);
        layoutH = new QHBoxLayout;
        layoutH->setObjectName(QStringLiteral("layoutH"));
        layoutH->setContentsMargins(0, 0, 0, 0);
        layoutH->setSpacing(6);
        layoutV->addLayout(layoutH);
    }

    // The value links are cut while the slider's handle is held, so a drag
    // moves the number without announcing every position; on release they
    // come back and the final value is announced once.
    template <class Slider, class Box> void followDrags(Slider *slider, Box *box)
    {
        QObject::connect(slider, &Slider::sliderPressed, owner, [this] { unlink(); });
        QObject::connect(slider, &Slider::sliderReleased, owner, [this, slider, box] {
            // A pop-up slider decides itself when its value is announced.
            if (popUpOpen)
                return;
            link();
            if (slider->value() == box->value())
                announce();
            else
                box->setValue(slider->value());
        });
        link();
    }

    void unlink()
    {
        for (const auto &connection : qAsConst(links))
            QObject::disconnect(connection);
        links.clear();
    }

    QString leftLabelText() const { return labelLeft ? labelLeft->text() : QString(); }
    QString topLabelText() const { return labelUpper ? labelUpper->text() : QString(); }
    void setLeftLabelText(const QString &text)
    {
        caption(labelLeft, layoutH, "labelLeft")->setText(text);
    }
    void setTopLabelText(const QString &text)
    {
        caption(labelUpper, layoutV, "labelUpper")->setText(text);
    }

    // While a pop-up slider is open its moves stay unannounced; the pop-up
    // announces the value, or takes it back, when it closes.
    bool popUpOpen = false;
    QWidget *owner = nullptr;
    QVBoxLayout *layoutV = nullptr;
    QHBoxLayout *layoutH = nullptr;
    QLabel *labelLeft = nullptr;
    QLabel *labelUpper = nullptr;

    void link()
    {
        unlink(); // a release without a press must not link twice
        links = makeLinks();
    }

protected:
    // The links from the number to the slider and to the public value
    // signals, made anew by link().
    virtual QVector<QMetaObject::Connection> makeLinks() = 0;
    // Announces the current value through the public value signals.
    virtual void announce() = 0;

private:
    // A caption is made on first use, so a widget without one has no empty
    // label taking space: the left one goes first in the row, the top one
    // first in the column.
    QLabel *caption(QLabel *&label, QBoxLayout *layout, const char *name)
    {
        if (!label) {
            label = new QLabel(owner);
            label->setObjectName(QString::fromLatin1(name));
            layout->insertWidget(0, label);
        }
        return label;
    }

    QVector<QMetaObject::Connection> links;
};

// The caption members that the compound value widgets publish alike.
// clang-format off
#define ORB_DEFINE_CAPTION_MEMBERS(Class)                                                   \
    QString Class::leftLabelText() const { return d_func()->leftLabelText(); }              \
    void Class::setLeftLabelText(const QString &text) { d_func()->setLeftLabelText(text); } \
    QString Class::topLabelText() const { return d_func()->topLabelText(); }                \
    void Class::setTopLabelText(const QString &text) { d_func()->setTopLabelText(text); }   \
    QLabel *Class::leftLabel() const { return d_func()->labelLeft; }                        \
    QLabel *Class::topLabel() const { return d_func()->labelUpper; }
// clang-format on

} // namespace OrbGui

#endif
