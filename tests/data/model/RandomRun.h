// RandomRun.h: one random life of a table: definitions, then calls of every kind, on the model and on the engine.
//
// Left out, since the engine's own safety decides there: structures shorter than the fields in an update, freed
// definitions under open cursors, virtual rows older than a definition, texts that aren't UTF-8, NaN, and a bucketer
// whose rebuilding failed while it was filtered (it is closed at once).
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace vx::naive {

class TRandomRun {
 public:
  explicit TRandomRun(std::uint32_t seed);
  ~TRandomRun();

  /// Makes one call; what differs afterwards, or nothing.
  std::string Step();
  std::string Report() const;

 private:
  struct TLife;
  const std::unique_ptr<TLife> life_;
};

}  // namespace vx::naive
