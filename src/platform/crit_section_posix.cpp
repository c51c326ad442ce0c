#include "platform/crit_section.h"

#include <pthread.h>

#include <cassert>

#include "platform/waiting.h"

namespace QMT::platform {

namespace {

// Most sections are left within less time than going to sleep takes. With one processor nobody leaves while
// this thread looks. A look takes the mutex's memory away from its holder, and long pauses let him do more
// at a stretch. All in all some microseconds.
constexpr int firstPause = 16;
int const longestPause = ProcessorCount() > 1 ? 128 : 0;

class PosixMutex final : public RecursiveMutex {
public:
    PosixMutex() {
        pthread_mutexattr_t attributes;
        pthread_mutexattr_init(&attributes);
        pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
        pthread_mutexattr_setprotocol(&attributes, PTHREAD_PRIO_INHERIT);
        if (pthread_mutex_init(&mutex, &attributes) != 0) {
            // A kernel without priority inheritance still locks.
            pthread_mutexattr_setprotocol(&attributes, PTHREAD_PRIO_NONE);
            [[maybe_unused]] int const result = pthread_mutex_init(&mutex, &attributes);
            assert(result == 0);
        }
        pthread_mutexattr_destroy(&attributes);
    }

    ~PosixMutex() override { pthread_mutex_destroy(&mutex); }

    void Enter() override {
        for (int pause = firstPause; pause <= longestPause; pause *= 2) {
            if (pthread_mutex_trylock(&mutex) == 0)
                return;
            for (int i = 0; i < pause; ++i)
                RelaxProcessor();
        }
        [[maybe_unused]] int const result = pthread_mutex_lock(&mutex);
        assert(result == 0);
    }

    void Leave() override {
        [[maybe_unused]] int const result = pthread_mutex_unlock(&mutex);
        assert(result == 0 && "a section is left by the thread that holds it");
    }

private:
    pthread_mutex_t mutex;
};

} // namespace

std::unique_ptr<RecursiveMutex> RecursiveMutex::Create() {
    return std::make_unique<PosixMutex>();
}

} // namespace QMT::platform
