// The max-flow solver beside Boost.Graph's Boykov-Kolmogorov, from an empty graph to the flow, and
// the cutting of pictures into regions beside OpenCV's watershed, which is given a seed in each of
// the same regions and finds their borders. One thread; CPU time; a node counts as a pixel.
//
// Arguments are those of Google Benchmark; without any, repetitions are interleaved so that a slow
// moment of the machine falls on all subjects alike.
#include <benchmark/benchmark.h>

#include <boost/graph/boykov_kolmogorov_max_flow.hpp>
#include <boost/graph/compressed_sparse_row_graph.hpp>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <numeric>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "bench_report.h"
#include "subjects.h"

namespace qpx::bench {
namespace {

void expectSame(int64_t expected, int64_t actual, const char* what) {
  if (expected == actual) return;
  std::fprintf(stderr, "%s: %lld in place of %lld\n", what, static_cast<long long>(actual),
               static_cast<long long>(expected));
  std::exit(1);
}

class Noise {
 public:
  int32_t below(int32_t end) {
    state_ = state_ * 6364136223846793005u + 1442695040888963407u;
    return static_cast<int32_t>((state_ >> 33) % static_cast<uint64_t>(end));
  }

 private:
  uint64_t state_ = 1;
};

// A picture's nodes with four neighbours each.
struct Grid {
  int32_t side;
  std::vector<int32_t> fromSource, toSink, right, down;

  explicit Grid(int32_t length) : side(length) {}
  int32_t nodes() const { return side * side; }

  void add(int32_t source, int32_t sink, int32_t toRight, int32_t toBelow) {
    fromSource.push_back(source);
    toSink.push_back(sink);
    right.push_back(toRight);
    down.push_back(toBelow);
  }

  // Calls edge(a, b, capacity) for neighbours, each pair once.
  template <typename Edge>
  void forEachEdge(const Edge& edge) const {
    for (int32_t i = 0; i < nodes(); ++i) {
      const auto k = static_cast<size_t>(i);
      if (i % side + 1 < side) edge(i, i + 1, right[k]);
      if (i + side < nodes()) edge(i, i + side, down[k]);
    }
  }
};
using GridPtr = std::shared_ptr<Grid>;

// A disc on a ground that is nearly as likely, smoothed strongly, with terminals at every node ...
GridPtr noisyDisc(int32_t side) {
  const auto grid = std::make_shared<Grid>(side);
  Noise noise;
  for (int32_t y = 0; y < side; ++y) {
    for (int32_t x = 0; x < side; ++x) {
      const int64_t dx = x - side / 2, dy = y - side / 2;
      const bool inside = 8 * (dx * dx + dy * dy) < int64_t{side} * side;
      const int32_t source = (inside ? 90 : 50) + noise.below(60);
      grid->add(source, 200 - source, 20 + noise.below(20), 20 + noise.below(20));
    }
  }
  return grid;
}

// ... or at few, from where flow goes far.
GridPtr strokes(int32_t side) {
  const GridPtr grid = noisyDisc(side);
  Noise noise;
  for (size_t i = 0; i < grid->fromSource.size(); ++i) {
    const int32_t factor = noise.below(50) == 0 ? 50 : 0;
    grid->fromSource[i] *= factor;
    grid->toSink[i] *= factor;
  }
  return grid;
}

// Capacities of any kind at every node.
GridPtr randomGrid(int32_t side) {
  const auto grid = std::make_shared<Grid>(side);
  Noise noise;
  for (int32_t i = 0; i < grid->nodes(); ++i) {
    grid->add(noise.below(100), noise.below(100), noise.below(50), noise.below(50));
  }
  return grid;
}

MaxFlowGraph* makeGraph(const Grid& grid) {
  MaxFlowGraph* graph = nullptr;
  expectSame(0, MaxFlowInt_Create(&graph, grid.nodes(), 2 * grid.nodes()), "create");
  for (int32_t i = 0; i < grid.nodes(); ++i) {
    const auto k = static_cast<size_t>(i);
    const int32_t caps[2] = {grid.fromSource[k], grid.toSink[k]};
    MaxFlowInt_AddNode(graph);
    MaxFlowInt_AddTWeights(graph, i, caps);
  }
  grid.forEachEdge([graph](int32_t a, int32_t b, int32_t capacity) {
    MaxFlowInt_AddEdge(graph, a, b, capacity, capacity);
  });
  return graph;
}

int64_t solve(const Grid& grid) {
  MaxFlowGraph* const graph = makeGraph(grid);
  const int64_t flow = MaxFlowInt_GetMaxFlow(graph);
  MaxFlowInt_Destroy(graph);
  return flow;
}

// A solved graph gets twenty strokes of 64 nodes, in turn for either side, and is solved again
// after each.
int64_t solveStrokes(const Grid& grid, int32_t (*again)(MaxFlowGraph*)) {
  constexpr int32_t kStrokes = 20, kLength = 64;
  MaxFlowGraph* const graph = makeGraph(grid);
  int64_t flow = MaxFlowInt_GetMaxFlow(graph);
  for (int32_t k = 0; k < kStrokes; ++k) {
    const int32_t caps[2] = {k % 2 * 1000, (1 - k % 2) * 1000};
    const int32_t first = (k + 1) * grid.side / (kStrokes + 2) * grid.side + 2 * k;
    for (int32_t i = first; i < first + kLength; ++i) {
      MaxFlowInt_AddTWeights(graph, i, caps);
      MaxFlowInt_MarkNode(graph, i);
    }
    flow = again(graph);
  }
  MaxFlowInt_Destroy(graph);
  return flow;
}

namespace peer {

using Graph =
    boost::compressed_sparse_row_graph<boost::directedS, boost::no_property, boost::no_property,
                                       boost::no_property, uint32_t, uint32_t>;
using Edge = boost::graph_traits<Graph>::edge_descriptor;

struct Arc {
  uint32_t from, to;
  int32_t capacity;
};

// Arcs in pairs: each stands next to its reverse.
std::vector<Arc> arcsOf(const Grid& grid) {
  const auto source = static_cast<uint32_t>(grid.nodes());
  std::vector<Arc> arcs;
  arcs.reserve(8 * static_cast<size_t>(grid.nodes()));
  const auto add = [&arcs](uint32_t a, uint32_t b, int32_t capacity, int32_t back) {
    arcs.push_back({a, b, capacity});
    arcs.push_back({b, a, back});
  };
  for (uint32_t i = 0; i < source; ++i) {
    if (grid.fromSource[i] > 0) add(source, i, grid.fromSource[i], 0);
    if (grid.toSink[i] > 0) add(i, source + 1, grid.toSink[i], 0);
  }
  grid.forEachEdge([&add](int32_t a, int32_t b, int32_t capacity) {
    add(static_cast<uint32_t>(a), static_cast<uint32_t>(b), capacity, capacity);
  });
  return arcs;
}

// Where each arc is when they are sorted by where they come from.
std::vector<uint32_t> sortedPlaces(const std::vector<Arc>& arcs, size_t nodes) {
  std::vector<uint32_t> next(nodes + 1);
  for (const Arc& arc : arcs) ++next[arc.from + 1];
  std::partial_sum(next.begin(), next.end(), next.begin());
  std::vector<uint32_t> places;
  places.reserve(arcs.size());
  for (const Arc& arc : arcs) places.push_back(next[arc.from]++);
  return places;
}

// In rows, which it solves twice as fast as adjacency lists.
int64_t solve(const Grid& grid) {
  const std::vector<Arc> arcs = arcsOf(grid);
  const size_t nodes = static_cast<size_t>(grid.nodes()) + 2;
  const std::vector<uint32_t> places = sortedPlaces(arcs, nodes);
  std::vector<std::pair<uint32_t, uint32_t>> ends(arcs.size());
  std::vector<int32_t> capacities(arcs.size()), residuals(arcs.size()), distances(nodes);
  std::vector<Edge> reverse(arcs.size()), parents(nodes);
  std::vector<boost::default_color_type> colors(nodes);
  for (size_t i = 0; i < arcs.size(); ++i) {
    const size_t twin = i ^ 1;
    ends[places[i]] = {arcs[i].from, arcs[i].to};
    capacities[places[i]] = arcs[i].capacity;
    reverse[places[i]] = Edge(arcs[twin].from, places[twin]);
  }
  const Graph graph(boost::edges_are_sorted, ends.begin(), ends.end(),
                    static_cast<uint32_t>(nodes));
  const auto byEdge = get(boost::edge_index, graph);
  const auto byNode = get(boost::vertex_index, graph);
  const auto source = static_cast<uint32_t>(grid.nodes());
  return boost::boykov_kolmogorov_max_flow(
      graph, boost::make_iterator_property_map(capacities.begin(), byEdge),
      boost::make_iterator_property_map(residuals.begin(), byEdge),
      boost::make_iterator_property_map(reverse.begin(), byEdge),
      boost::make_iterator_property_map(parents.begin(), byNode),
      boost::make_iterator_property_map(colors.begin(), byNode),
      boost::make_iterator_property_map(distances.begin(), byNode), byNode, source, source + 1);
}

}  // namespace peer

// Waves with the noise of a camera.
struct Photo {
  int32_t width, height;
  std::vector<uint8_t> bytes;
  std::vector<int32_t> labels;
  int32_t regions = 0;
  cv::Mat seeds;  // a marker in the first pixel of every region

  Photo(int32_t across, int32_t down) : width(across), height(down), labels(pixels()) {
    Noise noise;
    for (int32_t y = 0; y < height; ++y) {
      for (int32_t x = 0; x < width; ++x) {
        for (int32_t k = 0; k < 3; ++k) {
          const double wave =
              128 + 55 * std::sin(x * 0.02 + k) + 45 * std::cos(y * 0.03 + x * 0.005);
          bytes.push_back(static_cast<uint8_t>(wave + noise.below(6)));
        }
      }
    }
    segment();
    seeds = cv::Mat::zeros(height, width, CV_32S);
    std::vector<bool> seen(static_cast<size_t>(regions));
    for (size_t i = 0; i < pixels(); ++i) {
      const auto label = static_cast<size_t>(labels[i]);
      if (!seen[label]) seeds.ptr<int32_t>()[i] = labels[i] + 1;
      seen[label] = true;
    }
  }

  size_t pixels() const { return static_cast<size_t>(width) * static_cast<size_t>(height); }
  MBitmap record() {
    return {QPX_FORMAT_BGR24, width, height, {width * 3, 0, 0}, {bytes.data(), nullptr, nullptr}};
  }
  void segment() {
    const MBitmap image = record();
    expectSame(0, Watershed_PreSegmentation(&image, labels.data(), &regions), "regions");
  }
};
using PhotoPtr = std::shared_ptr<Photo>;

Body peerWatershed(const PhotoPtr& photo) {
  cv::setNumThreads(1);
  return [photo] {
    const cv::Mat image(photo->height, photo->width, CV_8UC3, photo->bytes.data());
    cv::Mat markers = photo->seeds.clone();
    cv::watershed(image, markers);
  };
}

Body colours(const PhotoPtr& photo) {
  const auto means =
      std::make_shared<std::vector<QPXRegionColor>>(static_cast<size_t>(photo->regions));
  return [=] {
    const MBitmap image = photo->record();
    Watershed_GetRegionColor(&image, photo->labels.data(), photo->regions, means->data());
  };
}

Body neighbours(const PhotoPtr& photo) {
  const auto regions = static_cast<size_t>(photo->regions);
  const auto edges = std::make_shared<std::vector<QPXRegionEdge>>(3 * regions);
  const auto heads = std::make_shared<std::vector<QPXRegionEdge*>>(regions);
  return [=] {
    int32_t count = 0;
    Watershed_GetRegionAdjacentEdge(photo->labels.data(), photo->width, photo->height,
                                    edges->data(), heads->data(), &count);
  };
}

class Suite {
 public:
  explicit Suite(Report* report) : report_(report) {}

  void addGrids(int32_t side) {
    const std::string group = "Max-flow, " + std::to_string(side) + "x" + std::to_string(side);
    addGrid(group, "noisy disc", noisyDisc(side));
    addGrid(group, "few terminals", strokes(side));
    addGrid(group, "random", randomGrid(side));
    const GridPtr grid = noisyDisc(side);
    expectSame(solveStrokes(*grid, MaxFlowInt_GetMaxFlow),
               solveStrokes(*grid, MaxFlowInt_GetMaxFlowFast), "strokes");
    const std::string work = "noisy disc, 20 strokes";
    add(group, work, "qpx, whole each time", grid->nodes(),
        [grid] { solveStrokes(*grid, MaxFlowInt_GetMaxFlow); });
    add(group, work, "qpx, fast", grid->nodes(),
        [grid] { solveStrokes(*grid, MaxFlowInt_GetMaxFlowFast); });
  }

  void addPhoto(int32_t width, int32_t height) {
    const auto photo = std::make_shared<Photo>(width, height);
    const auto pixels = static_cast<int64_t>(photo->pixels());
    const std::string group = "Watershed, " + sizeName({0, width, height}) + ", " +
                              std::to_string(photo->regions) + " regions";
    add(group, "regions", "cv::watershed", pixels, peerWatershed(photo));
    add(group, "regions", "qpx", pixels, [photo] { photo->segment(); });
    add(group, "mean colours", "qpx", pixels, colours(photo));
    add(group, "neighbours", "qpx", pixels, neighbours(photo));
  }

 private:
  void addGrid(const std::string& group, const std::string& work, const GridPtr& grid) {
    expectSame(peer::solve(*grid), solve(*grid), work.c_str());
    add(group, work, "Boost.Graph", grid->nodes(), [grid] { peer::solve(*grid); });
    add(group, work, "qpx", grid->nodes(), [grid] { solve(*grid); });
  }

  void add(const std::string& group, const std::string& work, const std::string& name,
           int64_t pixels, const Body& body) {
    report_->add({group, work, name, pixels}, [body](benchmark::State& state) {
      for (auto _ : state) body();
    });
  }

  Report* report_;
};

}  // namespace
}  // namespace qpx::bench

int main(int argc, char** argv) {
  qpx::bench::Report report;
  qpx::bench::Suite suite(&report);
  suite.addGrids(256);
  suite.addGrids(1024);
  suite.addPhoto(1155, 866);
  suite.addPhoto(4000, 3000);
  return qpx::bench::run(argc, argv, report);
}
