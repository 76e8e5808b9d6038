#include "sleepthread.h"

SleepThread::SleepThread(unsigned long milliseconds)
    : milliseconds(milliseconds)
{
    start();
}

SleepThread::~SleepThread()
{
    wait();
}

void SleepThread::run()
{
    QThread::msleep(milliseconds);
}
