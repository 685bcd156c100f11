#pragma once

namespace corvane::bench {

/// Runs the registered benchmarks, then prints each "SUBJECT/corvane" beside its baselines "SUBJECT/...": the medians
/// of the same run, and our relative speed (1.00 is equal, 0.80 a fifth slower).
int runAgainstRivals(int argc, char** argv);

}
