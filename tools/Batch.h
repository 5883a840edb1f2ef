// Meshing many files in one run: which files a batch covers, the share one shard of it takes,
// where each file's mesh goes, which are already done, and one report line per file. Each file
// is meshed in a process of its own, so that nothing one file does can stop the batch.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace orvane::tools {

// One file of a batch and where its mesh goes.
struct TBatchItem {
    std::string Input;
    std::string Output;
};

// The K-th of N shares of a batch (1 <= K <= N).
struct TShard {
    int Index = 1;
    int Count = 1;
};

// "K/N" with 1 <= K <= N <= 1000000; raises std::invalid_argument with a short message otherwise.
TShard ParseShard(const std::string& Text);

// The files the arguments name: a file as it is, a folder as every IGES or STEP file under it
// (by extension, sorted), "@LIST" as the lines of LIST (blank lines and lines starting with '#'
// left out). Each item's output is Folder/<path below the named folder, or the file's name>
// with its extension replaced by Extension. Raises std::invalid_argument when two inputs would
// write one output.
std::vector<TBatchItem> PlanBatch(const std::vector<std::string>& Arguments, const std::string& Folder,
                                  const std::string& Extension);

// Whether Input belongs to Shard: decided by a hash of its name, so a file keeps its shard when
// others join or leave the set.
bool InShard(const std::string& Input, const TShard& Shard);

// True when Output exists and was written after Input last changed. Outputs are renamed into
// place only when complete, so one that exists is whole.
bool IsUpToDate(const TBatchItem& Item);

// What meshing one file came to.
struct TFileReport {
    std::string File;
    std::string Output;
    std::string Status;  // "done", "faces skipped", "failed" or "up to date"
    std::string Error;   // why it failed
    int Faces = 0;
    std::size_t Triangles = 0;
    std::vector<std::pair<int, std::string>> Skipped;  // face number and reason
    std::vector<std::pair<std::string, double>> Seconds;  // stage and seconds
};

// The report as one line of JSON, without its newline.
std::string ReportLine(const TFileReport& Report);

// Runs Work in a child process and answers its report; a child that dies, or ends without a
// report, gives a failed report that says how it ended.
TFileReport RunInChild(const TBatchItem& Item, const std::function<TFileReport()>& Work);

// Meshes the items of Shard in order through MeshOne, each in its own process, leaving out those
// up to date; writes each file's report line to Report as soon as it is known. Answers the exit
// code: 0 when every file was written whole, 3 when some faces were skipped, 1 when some file
// failed (the others are written all the same).
int RunBatch(const std::vector<TBatchItem>& Items, const TShard& Shard, std::ostream& Report,
             const std::function<TFileReport(const TBatchItem&)>& MeshOne);

}  // namespace orvane::tools
