// Tells that a submission is adding rows to the database between yields, so that nobody closes or replaces the database
// under it. Held by the submission for its whole run; asked on the user-interface thread alone.
#pragma once

namespace database {

class SubmissionScope {
  public:
    SubmissionScope();
    ~SubmissionScope();
    SubmissionScope(const SubmissionScope&) = delete;
    SubmissionScope& operator=(const SubmissionScope&) = delete;
};

bool SubmissionRunning();

} // namespace database
