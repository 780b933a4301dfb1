#include "platform/graphics/JPEGReader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string>
#include <vector>

// The messages depend on the library's settings.
// clang-format off
#include <jpeglib.h>
#include <jerror.h>
// clang-format on

#include "platform/graphics/EXIFOrientation.h"
#include "platform/graphics/GraphicsError.h"

namespace kestrova::platform {

namespace {

static_assert(std::endian::native == std::endian::little, "JCS_EXT_BGRA is taken for 0xAARRGGBB");

// A progressive file may repeat scans at will, each of them costing time for the whole picture.
// Encoders make about ten.
constexpr int kMaximumScans = 50;
// For the coefficients of a progressive picture of the maximum size, and the rest.
constexpr long kMaximumMemory = 320L << 20;

struct Free {
  // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): the library's own way.
  void operator()(void* memory) const { std::free(memory); }
};

// The library reports errors by a jump out of its functions.
struct Errors {
  jpeg_error_mgr manager{};
  std::jmp_buf jump{};
  bool isDamaged = false;
  // The library has asked for bytes beyond the end of the file.
  bool isAtEnd = false;
};

Errors& errors(j_common_ptr common) {
  return *reinterpret_cast<Errors*>(common->err);
}

[[noreturn]] void errorExit(j_common_ptr common) {
  std::longjmp(errors(common).jump, 1);
}

// Warnings after which the library invents pixels. It also reads ahead, so reaching the end of the
// file alone is no damage yet: JWRN_HIT_MARKER follows when pixels lack their bits.
void emitMessage(j_common_ptr common, int level) {
  if (level >= 0) return;
  switch (common->err->msg_code) {
    case JWRN_JPEG_EOF:
      errors(common).isAtEnd = true;
      break;
    case JWRN_HIT_MARKER:
    case JWRN_HUFF_BAD_CODE:
    case JWRN_ARITH_BAD_CODE:
    case JWRN_MUST_RESYNC:
      errors(common).isDamaged = true;
      break;
    default:
      break;
  }
}

void monitor(j_common_ptr common) {
  const auto* const info = reinterpret_cast<j_decompress_ptr>(common);
  if (info->input_scan_number > kMaximumScans) errorExit(common);
}

// Drops trailing zero bytes, which an interrupted copy leaves in place of the data and which would
// decode to pixels. Keeps a single zero byte and one that escapes a 0xff: both are data.
std::string_view withoutFiller(std::string_view data) {
  const auto last = data.find_last_not_of('\0');
  if (last == data.npos || last + 2 >= data.size()) return data;
  return data.substr(0, data[last] == '\xff' ? last + 2 : last + 1);
}

// True if the scans give every bit of every coefficient of every component.
bool hasAllScans(const jpeg_decompress_struct& info) {
  for (int i = 0; i < info.num_components; ++i) {
    // Set by the component's first scan.
    if (!info.comp_info[i].quant_table) return false;
    // Only progressive files have these: the lowest bit known, -1 for none.
    if (!info.coef_bits) continue;
    const std::span<const int, DCTSIZE2> bits(info.coef_bits[i], DCTSIZE2);
    if (std::ranges::any_of(bits, [](int bit) { return bit != 0; })) return false;
  }
  return true;
}

std::uint32_t product(unsigned a, unsigned b) {
  return (a * b + 127) / 255;
}

}  // namespace

struct JPEGReader::State {
  State() {
    info.err = jpeg_std_error(&failure.manager);
    failure.manager.error_exit = errorExit;
    failure.manager.emit_message = emitMessage;
    progress.progress_monitor = monitor;
  }
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State() { jpeg_destroy_decompress(&info); }

  // Runs a step that may fail. The step may hold nothing that needs its destructor.
  template <typename Step>
  bool run(Step step) {
    if (failure.isDamaged) return false;
    // The library offers no other way out of its errors.
    if (setjmp(failure.jump) != 0) {
      failure.isDamaged = true;
      return false;
    }
    step();
    // Arithmetic coding omits zero bytes at the end of its data, which looks like a truncation.
    failure.isDamaged |= failure.isAtEnd && (info.arith_code || !hasAllScans(info));
    return true;
  }

  std::string message() {
    std::array<char, JMSG_LENGTH_MAX> text{};
    failure.manager.format_message(reinterpret_cast<j_common_ptr>(&info), text.data());
    return text.data();
  }

  UIImageOrientation orientation() const {
    for (const auto* marker = info.marker_list; marker; marker = marker->next) {
      const std::string_view segment(reinterpret_cast<const char*>(marker->data),
                                     marker->data_length);
      if (segment.starts_with("Exif")) return exifOrientation(segment);
    }
    return UIImageOrientation::up;
  }

  // Inks as Adobe's programs write them: inverted.
  void convertInks() {
    for (std::size_t x = 0; x < row.size(); ++x) {
      const auto* const ink = &inks[4 * x];
      row[x] = 0xff000000U | product(ink[0], ink[3]) << 16U | product(ink[1], ink[3]) << 8U |
               product(ink[2], ink[3]);
    }
  }

  jpeg_decompress_struct info{};
  jpeg_progress_mgr progress{};
  Errors failure;
  std::vector<std::uint32_t> row;
  // Of a CMYK file.
  std::vector<JSAMPLE> inks;
};

JPEGReader::JPEGReader(std::unique_ptr<State> state) : state_(std::move(state)) {}
JPEGReader::~JPEGReader() = default;

Result<std::unique_ptr<JPEGReader>> JPEGReader::open(std::string_view data) {
  auto state = std::make_unique<State>();
  auto* const info = &state->info;
  data = withoutFiller(data);
  const bool isRead = state->run([info, state = state.get(), data] {
    jpeg_create_decompress(info);
    info->progress = &state->progress;
    info->mem->max_memory_to_use = kMaximumMemory;
    jpeg_save_markers(info, JPEG_APP0 + 1, 0xffff);
    jpeg_save_markers(info, JPEG_APP0 + 2, 0xffff);
    jpeg_mem_src(info, reinterpret_cast<const unsigned char*>(data.data()),
                 static_cast<unsigned long>(data.size()));
    jpeg_read_header(info, TRUE);
  });
  if (!isRead || state->failure.isDamaged) {
    return graphicsError(GraphicsErrorCode::unknownFormat, "not a JPEG file: " + state->message());
  }
  if (!CGImage::isAllowed(info->image_width, info->image_height)) {
    return graphicsError(GraphicsErrorCode::tooLarge,
                         "a JPEG file of " + std::to_string(info->image_width) + " x " +
                             std::to_string(info->image_height) + " pixels");
  }
  const bool hasInks = info->num_components == 4;
  info->out_color_space = hasInks ? JCS_CMYK : JCS_EXT_BGRA;
  return std::unique_ptr<JPEGReader>(new JPEGReader(std::move(state)));
}

std::size_t JPEGReader::width() const {
  return state_->info.image_width;
}

std::size_t JPEGReader::height() const {
  return state_->info.image_height;
}

UIImageOrientation JPEGReader::orientation() const {
  return state_->orientation();
}

std::shared_ptr<const ColorProfile> JPEGReader::colorProfile() {
  auto& state = *state_;
  if (state.info.num_components != 3) return nullptr;
  JOCTET* icc = nullptr;
  unsigned size = 0;
  state.run([&] { jpeg_read_icc_profile(&state.info, &icc, &size); });
  const std::unique_ptr<JOCTET, Free> owned(icc);
  return ColorProfile::make({reinterpret_cast<const char*>(icc), size});
}

const std::uint32_t* JPEGReader::next() {
  auto& state = *state_;
  auto* const info = &state.info;
  if (state.row.empty()) {
    state.row.resize(info->image_width);
    if (info->out_color_space == JCS_CMYK) state.inks.resize(4 * state.row.size());
    if (!state.run([info] { jpeg_start_decompress(info); })) return nullptr;
  }
  if (info->output_scanline >= info->image_height) return nullptr;
  auto* line =
      state.inks.empty() ? reinterpret_cast<JSAMPLE*>(state.row.data()) : state.inks.data();
  if (!state.run([info, &line] { jpeg_read_scanlines(info, &line, 1); })) return nullptr;
  if (state.failure.isDamaged) return nullptr;
  if (!state.inks.empty()) state.convertInks();
  return state.row.data();
}

}  // namespace kestrova::platform
