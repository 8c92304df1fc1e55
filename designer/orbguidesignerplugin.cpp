// Qt Designer plugin: offers the library's exported value widgets in the
// widget box ("OrbCameraGuiApi"), with their properties in the property
// editor, so that forms can be drawn with them and loaded with QUiLoader.
#include <OrbGui/qtorbdoubleslider.h>
#include <OrbGui/qtorbdoublespinboxval.h>
#include <OrbGui/qtorbgainslider.h>
#include <OrbGui/qtorbslider.h>
#include <OrbGui/qtorbsliderspinbox.h>
#include <OrbGui/qtorbspinbox.h>
#include <OrbGui/qtorbspinboxval.h>
#include <OrbGui/qtorbspinboxval64.h>

#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

#include <QIcon>
#include <QObject>

namespace {

// One entry of the widget box; everything but the class and its header is
// the same for every widget.
template <class Widget> class WidgetEntry : public QObject, public QDesignerCustomWidgetInterface {
public:
    WidgetEntry(const char *className, const char *header, const char *toolTip, QObject *parent)
        : QObject(parent)
        , m_className(QString::fromLatin1(className))
        , m_header(QString::fromLatin1(header))
        , m_toolTip(QString::fromLatin1(toolTip))
    {
    }

    QString name() const override { return m_className; }
    QString group() const override { return QStringLiteral("OrbCameraGuiApi"); }
    QString toolTip() const override { return m_toolTip; }
    QString whatsThis() const override { return m_toolTip; }
    QString includeFile() const override { return m_header; }
    QIcon icon() const override { return QIcon(); }
    bool isContainer() const override { return false; }
    QWidget *createWidget(QWidget *parent) override { return new Widget(parent); }
    bool isInitialized() const override { return m_initialized; }
    void initialize(QDesignerFormEditorInterface *) override { m_initialized = true; }

private:
    QString m_className, m_header, m_toolTip;
    bool m_initialized = false;
};

} // namespace

class OrbGuiDesignerPlugin : public QObject, public QDesignerCustomWidgetCollectionInterface {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QDesignerCustomWidgetCollectionInterface")
    Q_INTERFACES(QDesignerCustomWidgetCollectionInterface)

public:
    explicit OrbGuiDesignerPlugin(QObject *parent = nullptr)
        : QObject(parent)
    {
        using namespace OrbGui;
        m_widgets << new WidgetEntry<QtOrbSpinBox>("OrbGui::QtOrbSpinBox", "OrbGui/qtorbspinbox.h",
                                                   "Spin box with a pop-up slider", this)
                  << new WidgetEntry<QtOrbSliderSpinBox>("OrbGui::QtOrbSliderSpinBox",
                                                         "OrbGui/qtorbsliderspinbox.h",
                                                         "Slider with a spin box", this)
                  << new WidgetEntry<QtOrbSpinBoxVal64>("OrbGui::QtOrbSpinBoxVal64",
                                                        "OrbGui/qtorbspinboxval64.h",
                                                        "Spin box for 64-bit integers", this)
                  << new WidgetEntry<QtOrbGainSlider>("OrbGui::QtOrbGainSlider",
                                                      "OrbGui/qtorbgainslider.h",
                                                      "Gain slider with a spin box", this)
                  << new WidgetEntry<QtOrbDoubleSlider>("OrbGui::QtOrbDoubleSlider",
                                                        "OrbGui/qtorbdoubleslider.h",
                                                        "Slider for floating-point values", this)
                  << new WidgetEntry<QtOrbSlider>("OrbGui::QtOrbSlider", "OrbGui/qtorbslider.h",
                                                  "Slider with linear or logarithmic scale", this)
                  << new WidgetEntry<QtOrbSpinBoxVal>("OrbGui::QtOrbSpinBoxVal",
                                                      "OrbGui/qtorbspinboxval.h",
                                                      "Spin box that validates what is typed", this)
                  << new WidgetEntry<QtOrbDoubleSpinBoxVal>(
                         "OrbGui::QtOrbDoubleSpinBoxVal", "OrbGui/qtorbdoublespinboxval.h",
                         "Double spin box that validates what is typed", this);
    }

    QList<QDesignerCustomWidgetInterface *> customWidgets() const override { return m_widgets; }

private:
    QList<QDesignerCustomWidgetInterface *> m_widgets;
};

#include "orbguidesignerplugin.moc"
