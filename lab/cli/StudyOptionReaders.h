#pragma once

#include <string>

namespace lab {

struct Options;

// The values of the options of studies, for the table of options.

void readRandom(Options& options, const std::string& text);
void readJobs(Options& options, const std::string& text);
void readSort(Options& options, const std::string& text);
void readMinTrades(Options& options, const std::string& text);
void readMemory(Options& options, const std::string& text);
void readResume(Options& options, const std::string& text);
void readTrain(Options& options, const std::string& text);
void readTest(Options& options, const std::string& text);
void readAnchored(Options& options, const std::string& text);
void readStarts(Options& options, const std::string& text);
void readSeeds(Options& options, const std::string& text);
void readChunks(Options& options, const std::string& text);

/// The names behind `work`: the plan, then the number of a chunk. And those behind `merge`: the plan.
void takePlan(Options& options, const std::string& word);

/// What has to be there for the command. Throws UsageError.
void checkStudy(const Options& options);

} // namespace lab
