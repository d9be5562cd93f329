#include "export/run_tables.h"

#include <vector>

#include "common/tables.h"
#include "export/csv.h"
#include "export/json.h"

namespace morlen {

void WriteTables(const model::Model& model, const results::Results& results, const KnownRun& run,
                 const TableTargets& targets, AtomicFile::By writer)
{
  if (!targets.csv && !targets.json)
    return;
  std::vector<tables::Table> tables = tables::AllTables(model, results);
  if (targets.csv) {
    tables.push_back(RunTable(run));
    WriteCsv(tables, *targets.csv, "", writer);
    tables.pop_back();
  }
  if (targets.json)
    WriteJson({"morlen-results", targets.program, "\"run\":" + JsonOf(run)}, model,
              targets.modelFile, tables, *targets.json, writer);
}

}  // namespace morlen
