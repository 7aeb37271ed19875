// The interpreter's stack of temporaries. Each running expression takes one
// contiguous range (a plain pointer, indexed without arithmetic on blocks)
// and gives it back when it ends, in stack order. Ranges never move: an
// expression that calls a declared function keeps pointers into its own
// range while the call takes ranges above it, so the stack grows by whole
// chunks instead of reallocating. The values left in a released range keep
// their strings' storage for the next expression that takes it.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "script/var_velan_script.h"

namespace velantis {

class TTempStack {
public:
  struct TMark {
    size_t chunk, top;
  };

  // count temporaries; restore the mark once they are no longer used.
  TVarVelanScript* Take(size_t count, TMark& mark) {
    mark = {m_chunk, m_top};
    if (m_chunk < m_chunks.size() && m_top + count <= m_chunks[m_chunk].size) {
      TVarVelanScript* range = m_chunks[m_chunk].values.get() + m_top;
      m_top += count;
      return range;
    }
    return TakeInNextChunk(count);
  }
  void Restore(const TMark& mark) {
    m_chunk = mark.chunk;
    m_top = mark.top;
  }

private:
  // Most expressions need a handful; a chunk holds many so that a deep
  // recursion of declared calls allocates rarely.
  static constexpr size_t kChunkValues = 256;

  struct TChunk {
    std::unique_ptr<TVarVelanScript[]> values;
    size_t size = 0;
  };
  std::vector<TChunk> m_chunks;
  size_t m_chunk = 0, m_top = 0;

  // The chunks above the current one are free: the next is used, or made
  // (larger when one expression needs more than a chunk).
  TVarVelanScript* TakeInNextChunk(size_t count) {
    const size_t next = m_chunks.empty() ? 0 : m_chunk + 1;
    if (next == m_chunks.size()) m_chunks.emplace_back();
    TChunk& chunk = m_chunks[next];
    if (chunk.size < count) {
      chunk.size = count > kChunkValues ? count : kChunkValues;
      chunk.values = std::make_unique<TVarVelanScript[]>(chunk.size);
    }
    m_chunk = next;
    m_top = count;
    return chunk.values.get();
  }
};

}  // namespace velantis
