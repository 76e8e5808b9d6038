#pragma once

#include <QThread>

// A blocking pause: the constructor starts a thread that sleeps for the
// given time and the destructor waits for it, so constructing and at once
// destroying one pauses the caller for that long.
class SleepThread final : public QThread
{
public:
    explicit SleepThread(unsigned long milliseconds);
    ~SleepThread() override;

protected:
    void run() override;

private:
    unsigned long milliseconds;
};
