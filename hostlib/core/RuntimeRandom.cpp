#include "host/core/RuntimeRandom.h"

CRuntimeRandom& CRuntimeRandom::OfThisThread() {
    thread_local CRuntimeRandom generator;
    return generator;
}
