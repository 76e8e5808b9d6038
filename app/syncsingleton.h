#pragma once

#include <QMutex>
#include <QMutexLocker>

#include <atomic>

// A process-wide object of type T, created with T's default constructor on
// first use and deleted when the process exits. One set of statics per T.
template<class T>
class SyncSingleton
{
public:
    // Deletes the instance at process exit, after main has returned.
    class Destroyer
    {
    public:
        constexpr Destroyer() = default;
        ~Destroyer() { delete doomed; }
        Destroyer(const Destroyer&) = delete;
        Destroyer& operator=(const Destroyer&) = delete;

        void setDoomed(T* instance) { doomed = instance; }

    private:
        T* doomed = nullptr;
    };

    static T* instance()
    {
        // Fast path without the lock; the atomic makes the unlocked test
        // well-defined and publishes the fully constructed object.
        T* existing = instance_pointer.load(std::memory_order_acquire);
        if (existing)
            return existing;
        createInstance();
        return instance_pointer.load(std::memory_order_acquire);
    }

    static void createInstance()
    {
        QMutexLocker locker(&instance_mutex);
        if (instance_pointer.load(std::memory_order_relaxed))
            return; // another thread won the race while we waited
        T* created = new T();
        instance_destroyer.setDoomed(created);
        instance_pointer.store(created, std::memory_order_release);
    }

    static inline std::atomic<T*> instance_pointer{nullptr};
    static inline QMutex instance_mutex;
    static inline Destroyer instance_destroyer;
};
