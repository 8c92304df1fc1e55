// Hands calls that the camera API or the GenICam node map make on any thread
// (a polling thread, an acquisition thread, the API's event thread) to the
// GUI thread, without ever blocking the calling thread: a blocking hand-off
// deadlocks when the GUI thread is itself waiting for that thread (it
// unregisters a listener while a burst of events is being delivered).
//
// A call handed over before invalidate() (an unbinding, a rebinding, a
// rebuilt model) or before the hand-off's destruction never runs: the work
// it carries would reach bindings or items that are gone.
#ifndef ORBGUI_GUIHANDOFF_H
#define ORBGUI_GUIHANDOFF_H

#include <QObject>

#include <functional>
#include <memory>

namespace OrbGui {

class GuiHandOffDrain;

class GuiHandOff {
public:
    // Calls run on the thread of `context`. post() must not be called
    // while this object is being destroyed: unregister the callbacks that
    // call it first.
    explicit GuiHandOff(QObject *context);
    ~GuiHandOff();
    GuiHandOff(const GuiHandOff &) = delete;
    GuiHandOff &operator=(const GuiHandOff &) = delete;

    // Runs `call` on the context's thread: at once when called there (the
    // caller holds no lock of ours then), otherwise queued. Any thread.
    void post(std::function<void()> call);
    // Calls posted so far will not run. The context's thread only.
    void invalidate();

private:
    QObject *m_context;
    std::unique_ptr<GuiHandOffDrain> m_drain;
};

} // namespace OrbGui

#endif
