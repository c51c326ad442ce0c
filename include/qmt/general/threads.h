// Waiting on several events, sleeping, and the base class of threads.
#pragma once

#include <memory>

#include "qmt/export.h"
#include "qmt/general/containers.h"
#include "qmt/general/errors.h"
#include "qmt/general/events.h"

namespace QMT {

// Blocks until an event of the array is signalled and gives its index, the lowest when several are: a stop
// event at index 0 is never held back by a semaphore that stays signalled. The wait takes nothing away (but
// for an `Event(false)`): the caller resets the event or takes one off the semaphore.
//
// `milliseconds` below 0 waits for ever. Otherwise the result is -1 when the time is up; 0 only looks. An
// empty array gives -1 at once. The array and its events must stay as they are during the wait; several
// threads may wait on one event.
//
// The caller then sees everything that was done before the event's `Signal`. Up to 128 events cost no
// allocation. The system is entered only to sleep.
QMT_GENU_API int WaitOnEvents(SVArray<Event*, Event*>& events, int milliseconds);

// Suspends the calling thread for at least so many milliseconds.
QMT_GENU_API void MS_Sleep(unsigned int milliseconds);

// A thread of the system that calls `RunCycle` over and over.
//
// A derived class supplies `RunCycle` and calls `StartRunning` once. Either it calls `RegisterSelfDeletes` in
// its constructor, and from a successful `StartRunning` on the object belongs to its thread; or its owner
// destroys it after the thread has ended, which `ended` tells.
//
// On the new thread run, in this order: the start function, `RunCycle` until it asks for the end or gives an
// error, `OnStop` once; then a self-deleting object is deleted, and `ended` is signalled.
//
//     class Worker : public Thread {
//     public:
//         Worker() : Thread("worker", nullptr, false) { RegisterSelfDeletes(); }
//     private:
//         ErrorInfo* RunCycle(bool& finished) override { finished = !DoOnePiece(); return nullptr; }
//     };
//     auto worker = std::make_unique<Worker>();
//     if (ErrorInfo* error = worker->StartRunning()) return error; // not started: still ours
//     worker.release();
class QMT_GENU_API Thread {
public:
    Thread(Thread const&) = delete;
    Thread& operator=(Thread const&) = delete;

    // The object must not have a running thread. Ends the process when that thread itself destroys an object
    // that joins it.
    virtual ~Thread();

    // Starts the system's thread; what this thread did before is seen by the new one. An error is the
    // caller's to delete, and then no thread runs and the object is still the caller's. After a success
    // a self-deleting object may be gone at any moment; another object gives an error when it is started
    // again.
    virtual ErrorInfo* StartRunning();

protected:
    // The last thing of the thread, with the error that ended it or null, which it now owns. The base version
    // writes an error to the developer's debug output and deletes it; an override calls it last.
    virtual void OnStop(ErrorInfo* error);

    // One piece of the thread's work. Setting `finished` to true, or giving an error, ends the thread.
    virtual ErrorInfo* RunCycle(bool& finished) = 0;

    // `name` is shown by debuggers and system monitors, cut to what the system takes (15 bytes on Linux); it
    // is not copied and must outlive the thread. `ended`, when it is not null, is signalled as the thread's
    // last act on the object; it belongs to the caller and must outlive that. With `joins` true the
    // destructor also waits until the system's thread is gone, which needs an object that does not delete
    // itself.
    Thread(char const* name, Event* ended, bool joins);

    // After the thread has ended the object deletes itself. For the derived class's constructor.
    void RegisterSelfDeletes();

public:
    // A function that the new thread runs first, for its priority, for example; null for none. To be set
    // before `StartRunning`.
    void SetThreadStartFunc(void (*function)());

private:
    struct Imp;

    void Run();
    ErrorInfo* RunCycles();

    std::unique_ptr<Imp> imp;
};

} // namespace QMT
