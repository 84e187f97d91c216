#pragma once
// Small thread helpers.

#include <thread>

void ThreadSleep( unsigned nMilliseconds );
// Gives the rest of the time slice to another thread.
void ThreadYield();
// Tells the CPU this thread is spinning (cheaper for the sibling hyper-thread).
void ThreadPause();
std::thread::id ThreadGetCurrentId();
// Hardware threads of the machine, at least 1.
int GetHardwareThreadCount();
