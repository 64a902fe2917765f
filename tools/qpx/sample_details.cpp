// People, balls and the test panel of the sample scene.
#include <array>

#include "sample_draw.h"

namespace qpx::tool {

namespace {

struct Vector {
  float x, y, z;
};

constexpr Vector kToSun = {0.52f, -0.56f, 0.645f};

float dot(Vector a, Vector b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

// Squared four times: a highlight without pow().
float highlight(float cosine) {
  float v = std::max(cosine, 0.0f);
  for (int i = 0; i < 4; ++i) v *= v;
  return v;
}

struct Ellipse {
  float x, y, rx, ry;

  // Roughly the distance from the edge, negative inside; exact enough to fade over a pixel.
  float distance(Place p) const {
    const float dx = (p.x - x) / rx, dy = (p.y - y) / ry;
    return (std::sqrt(dx * dx + dy * dy) - 1.0f) * std::min(rx, ry);
  }

  // Of the ellipsoid that bulges towards the viewer.
  Vector normal(Place p) const {
    const float dx = (p.x - x) / rx, dy = (p.y - y) / ry;
    return {dx, dy, std::sqrt(std::max(0.0f, 1.0f - dx * dx - dy * dy))};
  }

  // 1 in the middle, 0 at the edge, without a step in between.
  float softness(Place p) const {
    const float dx = (p.x - x) / rx, dy = (p.y - y) / ry;
    return 1.0f - smoothStep(0.0f, 1.0f, dx * dx + dy * dy);
  }
};

struct Person {
  float x;  // share of the width
  float y;  // of the head, share of the height
  Color skin, hair, shirt;
};

constexpr std::array kPeople = {
    Person{0.15f, 0.455f, rgb(244, 204, 178), rgb(150, 98, 48), rgb(70, 110, 160)},
    Person{0.36f, 0.425f, rgb(206, 152, 112), rgb(42, 30, 26), rgb(190, 70, 60)},
    Person{0.57f, 0.46f, rgb(122, 78, 54), rgb(24, 20, 20), rgb(228, 196, 110)},
};

// Light goes a little way round into the shade and comes out redder, as it does in skin.
Color litSkin(Color skin, Vector normal) {
  const float cosine = dot(normal, kToSun);
  const float diffuse = clamp01((cosine + 0.4f) / 1.4f);
  const Color shade = tinted(skin, rgb(150, 104, 100));
  const Color blush = tinted(skin, rgb(255, 206, 190));
  Color color = mix(shade, blush, smoothStep(0.0f, 0.55f, diffuse));
  color = mix(color, skin * 1.06f, smoothStep(0.4f, 1.0f, diffuse));
  return color + rgb(255, 244, 230) * (0.16f * highlight(cosine));
}

Color litCloth(Color cloth, Vector normal, Place p) {
  const float diffuse = clamp01((dot(normal, kToSun) + 0.3f) / 1.3f);
  const float across = p.x * 160.0f, down = p.y * 160.0f;
  const float weave =
      std::abs(across - std::floor(across) - 0.5f) + std::abs(down - std::floor(down) - 0.5f);
  return cloth * ((0.42f + 0.68f * diffuse) * (0.94f + 0.12f * weave));
}

Color drawEye(Color face, Place p, const Ellipse& head, float side) {
  const Ellipse white = {head.x + side * 0.40f * head.rx, head.y + 0.02f * head.ry, head.rx * 0.17f,
                         head.ry * 0.075f};
  const Ellipse iris = {white.x + 0.02f * head.rx, white.y, head.rx * 0.085f, head.rx * 0.085f};
  const Ellipse pupil = {iris.x, iris.y, iris.rx * 0.5f, iris.ry * 0.5f};
  const Ellipse glint = {iris.x + iris.rx * 0.35f, iris.y - iris.ry * 0.35f, iris.rx * 0.25f,
                         iris.ry * 0.25f};
  const Ellipse lid = {white.x, white.y - 0.02f * head.ry, white.rx * 1.5f, white.ry * 2.4f};
  const Ellipse brow = {white.x, white.y - head.ry * 0.19f, head.rx * 0.23f, head.ry * 0.032f};
  Color color = mix(face, face * 0.72f, lid.softness(p) * 0.7f);
  color = mix(color, face * 0.35f, p.inside(brow.distance(p)) * 0.8f);
  const float open = p.inside(white.distance(p));
  Color eye = mix(rgb(238, 234, 228), rgb(84, 64, 44), p.inside(iris.distance(p)));
  eye = mix(eye, rgb(14, 12, 12), p.inside(pupil.distance(p)));
  eye = mix(eye, rgb(255, 255, 255), p.inside(glint.distance(p)));
  return mix(color, eye, open);
}

Color drawFace(Color face, Place p, const Ellipse& head) {
  const Ellipse nose = {head.x - 0.05f * head.rx, head.y + 0.22f * head.ry, head.rx * 0.16f,
                        head.ry * 0.30f};
  const Ellipse tip = {head.x + 0.05f * head.rx, head.y + 0.27f * head.ry, head.rx * 0.15f,
                       head.ry * 0.11f};
  const Ellipse mouth = {head.x, head.y + 0.56f * head.ry, head.rx * 0.30f, head.ry * 0.075f};
  Color color = mix(face, face * 0.82f, nose.softness(p) * 0.6f);
  color = mix(color, face * 1.10f, tip.softness(p) * 0.7f);
  for (const float side : {-1.0f, 1.0f}) {
    const Ellipse cheek = {head.x + side * 0.52f * head.rx, head.y + 0.30f * head.ry,
                           head.rx * 0.30f, head.ry * 0.22f};
    color = mix(color, tinted(face, rgb(255, 190, 176)), cheek.softness(p) * 0.45f);
    color = drawEye(color, p, head, side);
  }
  const Color lips = tinted(face, rgb(226, 142, 134));
  // A parabola lifts the corners into a smile.
  const float side = (p.x - head.x) / head.rx;
  const Place lifted = {p.x, p.y + 0.9f * side * side * head.ry, p.pixel};
  color = mix(color, lips, p.inside(mouth.distance(lifted)));
  const float parting = std::abs(lifted.y - mouth.y) - 0.006f * head.ry;
  return mix(color, lips * 0.5f, p.inside(parting) * p.inside(mouth.distance(lifted)));
}

Color drawPerson(Color behind, Place p, const Person& person, const Extent& extent, uint32_t seed) {
  const float x = person.x * extent.width, y = person.y * extent.height;
  const Ellipse body = {x, y + 0.36f, 0.185f, 0.21f};
  const Ellipse neck = {x, y + 0.11f, 0.044f, 0.088f};
  const Ellipse head = {x, y, 0.085f, 0.115f};
  const Ellipse hair = {x, y - 0.012f, 0.096f, 0.125f};
  Color color = mix(behind, litCloth(person.shirt, body.normal(p), p), p.inside(body.distance(p)));
  const Ellipse collar = {x, y + 0.165f, 0.06f, 0.035f};
  color = mix(color, litSkin(person.skin, neck.normal(p)) * 0.86f,
              std::max(p.inside(neck.distance(p)), p.inside(collar.distance(p))));

  const Vector bulge = hair.normal(p);
  const float strand = noise((p.x - x) * 420.0f / (0.4f + bulge.z), (p.y - y) * 14.0f, seed);
  const float sheen = highlight(dot(bulge, kToSun)) * 0.35f;
  const Color hairColor = person.hair * (0.55f + 0.7f * strand + sheen) + rgb(60, 56, 50) * sheen;
  color = mix(color, hairColor, p.inside(hair.distance(p)));

  const float dx = (p.x - x) / head.rx;
  const float fringe = y - 0.045f - 0.03f * (1.0f - dx * dx) + 0.006f * strand - p.y;
  const Color face = drawFace(litSkin(person.skin, head.normal(p)), p, head);
  return mix(color, face, p.inside(head.distance(p)) * p.inside(fringe));
}

constexpr std::array kPatches = {
    rgb(116, 82, 66),   rgb(196, 150, 128), rgb(96, 122, 158),  rgb(88, 108, 66),
    rgb(132, 128, 178), rgb(102, 190, 170), rgb(216, 124, 44),  rgb(78, 92, 168),
    rgb(194, 88, 98),   rgb(94, 60, 106),   rgb(158, 188, 62),  rgb(226, 162, 44),
    rgb(54, 60, 150),   rgb(70, 150, 72),   rgb(176, 52, 60),   rgb(232, 200, 30),
    rgb(188, 84, 150),  rgb(6, 134, 162),   rgb(244, 244, 244), rgb(202, 202, 202),
    rgb(161, 161, 161), rgb(121, 121, 121), rgb(84, 84, 84),    rgb(50, 50, 50),
};

constexpr Color kCard = rgb(38, 38, 40);

// Coordinates 0 ... 1 across and down within the part that is drawn.
Color chart(float u, float v) {
  const float column = u * 6.0f, row = v * 4.0f;
  const float x = column - std::floor(column), y = row - std::floor(row);
  if (x < 0.06f || x > 0.94f || y < 0.07f || y > 0.93f) return kCard;
  const auto index = static_cast<size_t>(std::floor(row)) * 6 + static_cast<size_t>(column);
  return kPatches[std::min(index, kPatches.size() - 1)];
}

// A smooth ramp over one in steps: banding shows in the first, lost tones in the second.
Color ramp(float u, float v) {
  const float grey = v < 0.5f ? u : std::min(std::floor(u * 17.0f), 16.0f) / 16.0f;
  return {grey, grey, grey};
}

// Lines of 1, 2, 3 ... pixels, so counted in pixels, not in the scene's units: upright in the upper
// half, level in the lower.
Color lines(float u, float v, int32_t x, int32_t y) {
  const int32_t wide = std::clamp(static_cast<int32_t>((1.0f - u) * 6.0f), 0, 5) + 1;
  const bool dark = ((v < 0.5f ? x : y) / wide) % 2 == 0;
  return dark ? rgb(16, 16, 16) : rgb(240, 240, 240);
}

// Rings that grow finer outwards and reach two pixels at `radius`.
Color zonePlate(float x, float y, float radius, float pixel) {
  const float phase = (x * x + y * y) * 0.25f / (radius * pixel);
  const float t = phase - std::floor(phase);
  const float wave = t < 0.5f ? 16.0f * t * (0.5f - t) : 16.0f * (t - 0.5f) * (t - 1.0f);
  const float grey = 0.5f + 0.45f * wave;
  return {grey, grey, grey};
}

}  // namespace

Color drawPeople(Color behind, Place place, const Extent& extent, uint32_t seed) {
  Color color = behind;
  for (const Person& person : kPeople) {
    color = drawPerson(color, place, person, extent, seed += 7);
  }
  return color;
}

Color drawBalls(Color behind, Place place, const Extent& extent) {
  struct Ball {
    float x, y, radius;
    Color color;
  };
  constexpr std::array kBalls = {Ball{0.74f, 0.695f, 0.085f, rgb(222, 40, 34)},
                                 Ball{0.85f, 0.715f, 0.07f, rgb(240, 186, 22)},
                                 Ball{0.935f, 0.70f, 0.075f, rgb(34, 92, 200)}};
  Color color = behind;
  for (const Ball& ball : kBalls) {
    const Ellipse shape = {ball.x * extent.width, ball.y * extent.height, ball.radius, ball.radius};
    const Ellipse shadow = {shape.x - 0.02f, shape.y + ball.radius * 0.85f, ball.radius * 1.1f,
                            ball.radius * 0.35f};
    const Vector normal = shape.normal(place);
    const float cosine = dot(normal, kToSun);
    const float spark = highlight(highlight(cosine) > 0.2f ? cosine : 0.0f);
    const float rim = (1.0f - normal.z) * (1.0f - normal.z) * 0.35f;
    Color lit = ball.color * (0.22f + 0.88f * clamp01((cosine + 0.2f) / 1.2f));
    lit = mix(lit, rgb(170, 200, 236), rim * clamp01(-normal.y));
    lit = lit + rgb(255, 255, 250) * (0.9f * spark * spark);
    color = mix(color, color * 0.35f, shadow.softness(place));
    color = mix(color, lit, place.inside(shape.distance(place)));
  }
  return color;
}

Color drawPanel(Color behind, Place place, const Extent& extent, int32_t x, int32_t y) {
  const float top = panelTop(extent), height = extent.height - top;
  if (place.y < top) return behind;
  const float border = height * 0.07f;
  const float v = (place.y - top - border) / (height - 2.0f * border);
  const float u = place.x / extent.width;
  const Color paper = rgb(226, 222, 212) * (1.0f - 0.06f * noise(place.x * 90, place.y * 90, 5));
  if (v < 0.0f || v >= 1.0f) return paper;
  if (u >= 0.015f && u < 0.36f) return chart((u - 0.015f) / 0.345f, v);
  if (u >= 0.38f && u < 0.66f) return ramp((u - 0.38f) / 0.28f, v);
  if (u >= 0.68f && u < 0.83f) return lines((u - 0.68f) / 0.15f, v, x, y);
  if (u >= 0.85f && u < 0.985f) {
    const float middle = (0.85f + 0.985f) / 2.0f * extent.width;
    return zonePlate(place.x - middle, place.y - top - height / 2.0f, height / 2.0f, place.pixel);
  }
  return paper;
}

}  // namespace qpx::tool
