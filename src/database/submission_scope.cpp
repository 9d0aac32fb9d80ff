#include "database/submission_scope.h"

namespace database {

namespace {

int& Running() {
    static int running = 0;
    return running;
}

} // namespace

SubmissionScope::SubmissionScope() { ++Running(); }

SubmissionScope::~SubmissionScope() { --Running(); }

bool SubmissionRunning() { return Running() > 0; }

} // namespace database
