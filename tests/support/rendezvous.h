// Threads that wait for each other, as often as they like: std::barrier, which not every standard library
// that the tests are built with has.

#pragma once

#include <pthread.h>

class rendezvous {
public:
    explicit rendezvous(unsigned threads) { pthread_barrier_init(&barrier_, nullptr, threads); }
    rendezvous(const rendezvous &) = delete;
    rendezvous &operator=(const rendezvous &) = delete;
    ~rendezvous() { pthread_barrier_destroy(&barrier_); }

    void arrive_and_wait() { pthread_barrier_wait(&barrier_); }

private:
    pthread_barrier_t barrier_;
};
