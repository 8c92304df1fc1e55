/// \file
/// OrbGenParamTreeView: every feature of a GenICam node map (or of a camera's
/// parameter array) as an editable tree, with a name filter, a visibility
/// level, a description pane, polling and an error list.
///
/// The view never owns the node map or the array; they must outlive it (and,
/// after setParams or clearParams, the next pass of the event loop, in which
/// the old model is deleted). Stop polling before releasing the node map.
/// GUI thread only. GenICam exceptions from polling propagate into the event
/// loop; the model catches those of reading and writing features and lists
/// them behind the status button.
///
/// Nothing is written that the user did not choose: moving through the tree
/// (arrow keys, the wheel) opens no editor and changes no value; F2 or Enter
/// edits the current row's value, Escape leaves the editor. Escape never
/// closes or hides the view (in the filter field it clears the filter).
#ifndef ORBGUI_ORBGENPARAMTREEVIEW_H
#define ORBGUI_ORBGENPARAMTREEVIEW_H

#include <OrbGui/iorbgenparamtreeview.h>

#include <QDialog>
#include <QScopedPointer>

class QTreeView;

namespace OrbGui {

class OrbGenParamTreeViewPrivate;

class ORBGUI_EXPORT OrbGenParamTreeView : public QDialog, public IOrbGenParamTreeView {
    Q_OBJECT

public:
    explicit OrbGenParamTreeView(QWidget *parent = nullptr);
    OrbGenParamTreeView(GenApi_3_0::INodeMap *nodeMap, QWidget *parent = nullptr);
    OrbGenParamTreeView(OrbGenParam::Array *array, QWidget *parent = nullptr);
    ~OrbGenParamTreeView() override;

    void setParams(OrbGenParam::Array *array) override;
    void setParams(GenApi_3_0::INodeMap *nodeMap) override;
    void clearParams() override;
    Visibility visibility() const override;
    void setVisibility(Visibility visibility) override;
    const char *saveState() const override;
    void loadState(const char *state) override;
    void setPollingTime(unsigned long milliseconds) override;
    unsigned long getPollingTime() override;
    void enablePolling(bool enable) override;
    bool isPollingEnabled() override;

    /// The tree, for hosts that want to tune it.
    QTreeView *treeView() const;

    /// The whole feature tree under Root, for a trace of the camera's state:
    /// one line per row of the tree (whatever the visibility level and name
    /// filter hide), "Root/Category/Name = value unit  (type,
    /// access)", or "...: error: message  (type, access)" where reading
    /// failed; categories as "Root/Category  (Category)". Reads every value;
    /// empty without a node map. The tree's context menu writes it to a file.
    QString exportText() const;
    /// The same as JSON: {"format": "orbgui-feature-tree", "version": 1,
    /// "features": [{"path", "name", "type", "access", "value", "unit"}, ...]},
    /// with "error" instead of "value" and "unit" where reading failed.
    QByteArray exportJson() const;

    /// Saves the values of the camera's writable features to a text file
    /// (format "OrbGui settings 1": a "Name = value" line per feature, in an
    /// order the camera takes them, selectors before what they select and
    /// every selector value visited; saving sets each selector in turn and
    /// back). False, with the reason in *error, when the file cannot be
    /// written or there is no camera. The tree's context menu asks for the
    /// file.
    bool saveSettings(const QString &path, QString *error = nullptr);
    /// Writes a settings file's values to the camera, in the file's order;
    /// values refused at first (locked or not available until another is
    /// written) are tried again after the others. False, and nothing
    /// written, when the file cannot be read, is no settings file, or names
    /// another camera model while acceptOtherModel is false; *error says
    /// why. Otherwise true, and each feature that could not be written is
    /// listed in *problems as "Name: reason".
    bool loadSettings(const QString &path, bool acceptOtherModel = false,
                      QStringList *problems = nullptr, QString *error = nullptr);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    Q_DECLARE_PRIVATE(OrbGenParamTreeView)
    Q_DISABLE_COPY(OrbGenParamTreeView)
    QScopedPointer<OrbGenParamTreeViewPrivate> const d_ptr;
};

} // namespace OrbGui

#endif
