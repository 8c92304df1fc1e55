/// \file
/// IOrbGenParamTreeView: the abstract interface of the parameter tree view,
/// as the plain entry points hand it out (see orbgenparamtreeviewapi.h).
/// Every operation must be called on the Qt GUI thread.
#ifndef ORBGUI_IORBGENPARAMTREEVIEW_H
#define ORBGUI_IORBGENPARAMTREEVIEW_H

#include <OrbGui/orbguiglobal.h>

namespace GenApi_3_0 {
struct INodeMap;
}
namespace OrbGenParam {
class Array;
}

namespace OrbGui {

class ORBGUI_EXPORT IOrbGenParamTreeView {
public:
    /// Destroys the whole view.
    virtual ~IOrbGenParamTreeView();
    /// Shows the node map behind the array (which must not be null); the
    /// array must outlive the view.
    virtual void setParams(OrbGenParam::Array *array) = 0;
    /// Shows the node map, which must outlive the view; null clears the view.
    virtual void setParams(GenApi_3_0::INodeMap *nodeMap) = 0;
    virtual void clearParams() = 0;
    virtual Visibility visibility() const = 0;
    virtual void setVisibility(Visibility visibility) = 0;
    /// The expanded categories, the first column's width, the visibility
    /// level and the splitter position as text. The pointer stays valid until
    /// the next saveState or loadState call or the view's destruction.
    virtual const char *saveState() const = 0;
    /// Restores a text from saveState; null or empty changes nothing. A key
    /// followed by a non-number throws std::invalid_argument.
    virtual void loadState(const char *state) = 0;
    virtual void setPollingTime(unsigned long milliseconds) = 0;
    virtual unsigned long getPollingTime() = 0;
    virtual void enablePolling(bool enable) = 0;
    virtual bool isPollingEnabled() = 0;
};

} // namespace OrbGui

#endif
