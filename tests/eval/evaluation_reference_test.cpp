// Compares Evaluate with 186 positions evaluated by an independent
// implementation of the same rules (tests/data/reference/evaluation.txt):
// score, the printed rows byte for byte, and everything the rows leave out.
#include <cinttypes>
#include <cstdarg>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "eval/eval_tables.h"
#include "eval/passed_pawns.h"
#include "eval/prologue_terms.h"
#include "eval/threats.h"
#include "tests/eval/eval_fixture.h"

namespace mirvo {
namespace {

constexpr char referenceFile[] = MIRVO_SOURCE_DIR "/tests/data/reference/evaluation.txt";
constexpr int nReferencePositions = 186;

struct ReferencePosition {
  std::string fen;
  std::string text;  // everything below the position line, as in the file
};

std::vector<ReferencePosition> ReadReference() {
  std::vector<ReferencePosition> positions;
  std::ifstream file(referenceFile);
  const std::string lead = "position: ";
  for (std::string line; std::getline(file, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.compare(0, lead.size(), lead) == 0) {
      positions.push_back({line.substr(lead.size()), ""});
    } else if (!positions.empty() && !line.empty()) {
      positions.back().text += line + "\n";
    }
  }
  return positions;
}

std::string Line(const char* format, ...) __attribute__((format(printf, 1, 2)));

std::string Line(const char* format, ...) {
  char text[200];
  std::va_list values;
  va_start(values, format);
  std::vsnprintf(text, sizeof text, format, values);
  va_end(values);
  return text;
}

class EvaluationReference : public EvalTest {
 protected:
  /// The block of the reference file as our evaluation would write it.
  std::string Describe(const std::string& fen) {
    testing::internal::CaptureStdout();
    const std::int32_t score = ColdWithReport(fen);
    std::string report = testing::internal::GetCapturedStdout();
    if (report.ends_with("\n\n")) report.pop_back();
    return Line("%d\n", score) + report + Leftovers() + Facts();
  }

 private:
  std::string Leftovers() {
    std::string text;
    const int blockade[] = {EvaluateCentreBlockade(record, white),
                            EvaluateCentreBlockade(record, black)};
    text += Line("blockade: white %d 0 black %d 0\n", blockade[white], blockade[black]);
    const int wing[] = {EvaluateWingPawns(record, white), EvaluateWingPawns(record, black)};
    text += Line("wing: white 0 %d black 0 %d\n", wing[white], wing[black]);
    const int threats[] = {EvaluateThreats(record, white), EvaluateThreats(record, black)};
    text += Line("threats: white %d %d black %d %d\n", threats[white], threats[white],
                 threats[black], threats[black]);
    const ScorePair passed[] = {EvaluatePassedPawns(record, white),
                                EvaluatePassedPawns(record, black)};
    return text + Line("passed: white %d %d black %d %d\n", passed[white].mg, passed[white].eg,
                       passed[black].mg, passed[black].eg);
  }

  std::string Facts() const {
    const float phase =
        static_cast<float>(record.nonPawnMaterial[white] + record.nonPawnMaterial[black]) *
        phasePerCentipawn;
    std::string text = Line("phase: %.9g\nstage: %d\n", static_cast<double>(phase),
                            static_cast<int>(record.stage));
    text += Line(
        "passedset: %016" PRIx64 " %016" PRIx64 " isolated: %016" PRIx64 " %016" PRIx64 "\n",
        record.passed[white], record.passed[black], record.isolated[white], record.isolated[black]);
    return text + Line("kingattack: white %d %d black %d %d\n", record.kingAttackers[white],
                       record.kingAttackWeight[white], record.kingAttackers[black],
                       record.kingAttackWeight[black]);
  }
};

TEST_F(EvaluationReference, EveryPositionAgreesToTheLastByte) {
  const std::vector<ReferencePosition> positions = ReadReference();
  ASSERT_EQ(positions.size(), std::size_t{nReferencePositions});
  for (const ReferencePosition& position : positions) {
    EXPECT_EQ(Describe(position.fen), position.text) << position.fen;
  }
}

}  // namespace
}  // namespace mirvo
