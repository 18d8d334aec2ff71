#include <gtest/gtest.h>

#include <climits>
#include <fstream>
#include <sstream>
#include <string>

#include "TCAir_input.h"
#include "TCBand.h"
#include "TCData_file.h"
#include "TCObject_kinds.h"
#include "TCObject_list_input.h"
#include "scratch_folder.h"
#include "stream_capture.h"

namespace {

int read_air_text(TCAir_input& air, const std::string& text, std::string& printed) {
  std::istringstream in(text);
  Stream_capture out(std::cout);
  const int result = air.read_stream(in);
  printed = out.text();
  return result;
}

std::string written_air(const TCAir_input& air) {
  std::ostringstream out;
  Stream_capture quiet(std::cout);
  EXPECT_EQ(air.write_stream(out), 1);
  return out.str();
}

const char* haze_file =
    "Tidecast_data_file air 2 2\n"
    "number_of_bands 2\n"
    "band_id  4 9\n"
    "air_type: haze\n"
    "surface_shape round\n"
    "surface_radius 6371000\n"
    "molecular_height 8000\n"
    "molecular_density 1.5\n"
    "molecular_wavelength_dependence:  4.0\n"
    "aerosol_height 1200\n"
    "aerosol_density 2.5\n"
    "aerosol_scattering_strength:  0.25  0.5\n"
    "aerosol_scattering_width:  0.8  0.9\n"
    "sun_max_radiance 2000\n"
    "external_exact 1\n"
    "end\n";

}  // namespace

TEST(Air_input, starts_as_clean_air_over_a_round_base) {
  TCAir_input air;
  EXPECT_EQ(air.type_code, TC_KIND_AIR);
  EXPECT_EQ(air.type_code, 7);
  EXPECT_STREQ(air.object_type, "air");
  EXPECT_STREQ(air.object_name, "air_type_name");
  EXPECT_DOUBLE_EQ(air.priority, 1.0);
  EXPECT_EQ(air.version, 2);
  EXPECT_EQ(air.number_of_bands, 0);
  EXPECT_EQ(air.surface_shape, 1);
  EXPECT_EQ(air.air_type, 1);
  EXPECT_DOUBLE_EQ(air.molecular_height, 1.0);
  EXPECT_DOUBLE_EQ(air.molecular_density, 1.0);
  EXPECT_DOUBLE_EQ(air.molecular_wavelength_dependence, 4.1);
  EXPECT_DOUBLE_EQ(air.aerosol_height, 1.0);
  EXPECT_DOUBLE_EQ(air.aerosol_density, 1.0);
  EXPECT_DOUBLE_EQ(air.aerosol_scattering_factor, 0.93);
  EXPECT_EQ(air.external_exact, 0);
  EXPECT_DOUBLE_EQ(air.sun_max_radiance, 99999999.0);
}

TEST(Air_input, allocating_bands_sets_haze_widths_to_095) {
  TCAir_input air;
  ASSERT_EQ(air.allocate_arrays(3), 1);
  EXPECT_EQ(air.number_of_bands, 3);
  EXPECT_EQ(air.band_id.n, 3);
  for (int i = 0; i < 3; i++) {
    EXPECT_DOUBLE_EQ(air.haze_phase_function[i], 0.95);
    EXPECT_DOUBLE_EQ(air.radiance_value[i], 0.0);
  }
  EXPECT_EQ(air.allocate_arrays(-1), 0);
  EXPECT_EQ(air.number_of_bands, 3);
}

TEST(Air_input, haze_file_reads_every_field) {
  TCAir_input air;
  std::string printed;
  ASSERT_EQ(read_air_text(air, haze_file, printed), 1) << printed;
  EXPECT_EQ(printed, "");
  ASSERT_EQ(air.number_of_bands, 2);
  EXPECT_EQ(air.band_id.band_id[0], 4);
  EXPECT_EQ(air.band_id.band_id[1], 9);
  EXPECT_EQ(air.air_type, 3);
  EXPECT_EQ(air.surface_shape, 1);
  EXPECT_DOUBLE_EQ(air.surface_radius, 6371000.0);
  EXPECT_DOUBLE_EQ(air.molecular_height, 8000.0);
  EXPECT_DOUBLE_EQ(air.molecular_density, 1.5);
  EXPECT_DOUBLE_EQ(air.molecular_wavelength_dependence, 4.0);
  EXPECT_DOUBLE_EQ(air.aerosol_height, 1200.0);
  EXPECT_DOUBLE_EQ(air.aerosol_density, 2.5);
  EXPECT_DOUBLE_EQ(air.radiance_value[0], 0.25);
  EXPECT_DOUBLE_EQ(air.radiance_value[1], 0.5);
  EXPECT_DOUBLE_EQ(air.haze_phase_function[0], 0.8);
  EXPECT_DOUBLE_EQ(air.haze_phase_function[1], 0.9);
  EXPECT_DOUBLE_EQ(air.sun_max_radiance, 2000.0);
  EXPECT_EQ(air.external_exact, 1);
}

TEST(Air_input, file_ending_after_the_air_values_has_no_limit_and_no_exact_mode) {
  TCAir_input air;
  air.external_exact = 1;
  air.sun_max_radiance = 5.0;
  std::string printed;
  const std::string text =
      "Tidecast_data_file air 2 2\nnumber_of_bands 1\nband_id 1\nair_type: clean\n"
      "surface_shape flat\nmolecular_height 8000\nmolecular_density 1\n"
      "molecular_wavelength_dependence: 4.1\n";
  ASSERT_EQ(read_air_text(air, text, printed), 1) << printed;
  EXPECT_DOUBLE_EQ(air.sun_max_radiance, 99999999.0);
  EXPECT_EQ(air.external_exact, 0);
  EXPECT_EQ(air.surface_shape, 0);
}

TEST(Air_input, end_right_after_the_values_closes_the_file) {
  TCAir_input air;
  air.sun_max_radiance = 5.0;
  std::string printed;
  const std::string text =
      "Tidecast_data_file air 2 2\nnumber_of_bands 1\nband_id 1\nair_type: uniform\n"
      "surface_shape flat\nradiance_value 3.5\nend\n";
  ASSERT_EQ(read_air_text(air, text, printed), 1) << printed;
  EXPECT_EQ(air.air_type, 0);
  EXPECT_DOUBLE_EQ(air.radiance_value[0], 3.5);
  EXPECT_DOUBLE_EQ(air.sun_max_radiance, 99999999.0);
}

TEST(Air_input, sun_limit_then_end_leaves_exact_mode_off) {
  TCAir_input air;
  std::string printed;
  const std::string text =
      "Tidecast_data_file air 2 2\nnumber_of_bands 1\nband_id 1\nair_type: clean\n"
      "surface_shape flat\nmolecular_height 8000\nmolecular_density 1\n"
      "molecular_wavelength_dependence: 4.1\nsun_max_radiance 700\nend\n";
  ASSERT_EQ(read_air_text(air, text, printed), 1) << printed;
  EXPECT_DOUBLE_EQ(air.sun_max_radiance, 700.0);
  EXPECT_EQ(air.external_exact, 0);
}

TEST(Air_input, reading_clears_exact_mode_first) {
  TCAir_input air;
  air.external_exact = 1;
  std::string printed;
  const std::string text = "Tidecast_data_file cloud 2 2\n";
  EXPECT_EQ(read_air_text(air, text, printed), 0);
  EXPECT_EQ(air.external_exact, 0);
}

TEST(Air_input, negative_sun_limit_removes_the_limit) {
  TCAir_input air;
  std::string printed;
  const std::string text =
      "Tidecast_data_file air 2 2\nnumber_of_bands 1\nband_id 1\nair_type: clean\n"
      "surface_shape flat\nmolecular_height 8000\nmolecular_density 1\n"
      "molecular_wavelength_dependence: 4.1\nsun_max_radiance -3\nend\n";
  ASSERT_EQ(read_air_text(air, text, printed), 1) << printed;
  EXPECT_EQ(printed, "");
  EXPECT_DOUBLE_EQ(air.sun_max_radiance, 99999999.0);
}

TEST(Air_input, the_word_decides_the_kind_and_unknown_words_are_dirty) {
  const char* words[] = {"uniform", "clean", "haze", "dirty", "dirrty", "Haze"};
  const int codes[] = {0, 1, 3, 2, 2, 2};
  for (int w = 0; w < 6; w++) {
    TCAir_input air;
    std::string text = std::string("Tidecast_data_file air 2 2\nnumber_of_bands 1\nband_id 1\n") +
                       "air_type: " + words[w] + "\nsurface_shape flat\n";
    // Enough values for the longest kind; the surplus is taken as the tail.
    std::string printed;
    read_air_text(air, text, printed);
    EXPECT_EQ(air.air_type, codes[w]) << words[w];
  }
}

TEST(Air_input, haze_values_under_a_dirty_word_are_read_as_dirty_air) {
  // The writer's haze lines, with the kind word changed: the reader goes by
  // the word, so the per-band lists land in the dirty air's single values.
  TCAir_input air;
  std::string printed;
  const std::string text =
      "Tidecast_data_file air 2 2\nnumber_of_bands 1\nband_id 1\nair_type: dirty\n"
      "surface_shape flat\nmolecular_height 8000\nmolecular_density 1\n"
      "molecular_wavelength_dependence: 4.1\naerosol_height 1200\naerosol_density 2\n"
      "aerosol_scattering_strength:  0.7\naerosol_scattering_width:  0.9\nend\n";
  EXPECT_EQ(read_air_text(air, text, printed), 1);
  EXPECT_EQ(air.air_type, 2);
  // "aerosol_scattering_strength:" is taken as the factor's keyword, and the
  // width line as the optional sun limit.
  EXPECT_DOUBLE_EQ(air.aerosol_scattering_factor, 0.7);
  EXPECT_DOUBLE_EQ(air.sun_max_radiance, 0.9);
  EXPECT_DOUBLE_EQ(air.radiance_value[0], 0.0);
  EXPECT_EQ(printed, "");
}

TEST(Air_input, version_1_clean_air_has_no_exponent_line) {
  TCAir_input air;
  air.molecular_wavelength_dependence = 3.0;
  std::string printed;
  const std::string text =
      "Tidecast_data_file air 1 1\nnumber_of_bands 1\nband_id 1\nair_type: clean\n"
      "surface_shape round\nsurface_radius 6000000\nmolecular_height 7000\n"
      "molecular_density 2\nend\n";
  ASSERT_EQ(read_air_text(air, text, printed), 1) << printed;
  EXPECT_DOUBLE_EQ(air.molecular_wavelength_dependence, 4.1);
  EXPECT_DOUBLE_EQ(air.molecular_height, 7000.0);
  EXPECT_DOUBLE_EQ(air.molecular_density, 2.0);
  EXPECT_DOUBLE_EQ(air.surface_radius, 6000000.0);
}

TEST(Air_input, version_1_dirty_air_reads_aerosol_without_exponent) {
  TCAir_input air;
  std::string printed;
  const std::string text =
      "Tidecast_data_file air 1 1\nnumber_of_bands 1\nband_id 1\nair_type: dirty\n"
      "surface_shape flat\nmolecular_height 7000\nmolecular_density 2\n"
      "aerosol_height 900\naerosol_density 3\naerosol_scattering_factor 0.8\nend\n";
  ASSERT_EQ(read_air_text(air, text, printed), 1) << printed;
  EXPECT_DOUBLE_EQ(air.molecular_wavelength_dependence, 4.1);
  EXPECT_DOUBLE_EQ(air.aerosol_height, 900.0);
  EXPECT_DOUBLE_EQ(air.aerosol_density, 3.0);
  EXPECT_DOUBLE_EQ(air.aerosol_scattering_factor, 0.8);
}

TEST(Air_input, a_wrong_last_word_is_reported) {
  TCAir_input air;
  std::string printed;
  const std::string text =
      "Tidecast_data_file air 2 2\nnumber_of_bands 1\nband_id 1\nair_type: clean\n"
      "surface_shape flat\nmolecular_height 8000\nmolecular_density 1\n"
      "molecular_wavelength_dependence: 4.1\nsun_max_radiance 700\nexternal_exact 1\nfinish\n";
  EXPECT_EQ(read_air_text(air, text, printed), 0);
  EXPECT_EQ(printed, "air file invalid, read finishinstead of end\n");
  EXPECT_EQ(air.external_exact, 1);
}

TEST(Air_input, a_bad_header_is_reported) {
  TCAir_input air;
  std::string printed;
  EXPECT_EQ(read_air_text(air, "Tidecast_data_file air 3 3\n", printed), 0);
  EXPECT_EQ(printed, " TCAir_input:: cannot process air input  file \n");
}

TEST(Air_input, a_negative_band_count_cannot_be_allocated) {
  TCAir_input air;
  std::string printed;
  EXPECT_EQ(read_air_text(air, "Tidecast_data_file air 2 2\nnumber_of_bands -2\n", printed), 0);
  EXPECT_EQ(printed, "TCAir_input::unable to allocate air input arrays \n");
}

TEST(Air_input, a_huge_band_count_the_file_cannot_back_fails_quietly) {
  TCAir_input air;
  std::string printed;
  const std::string text = "Tidecast_data_file air 2 2\nnumber_of_bands 2000000000\nband_id 1 2\n";
  EXPECT_EQ(read_air_text(air, text, printed), 0);
  EXPECT_EQ(air.number_of_bands, 0);
}

TEST(Air_input, a_file_cut_anywhere_before_the_tail_fails_without_harm) {
  // Every prefix that stops before the last width value has started is
  // missing a required value; longer ones reach the optional tail.
  const std::string whole = haze_file;
  const std::string::size_type last_value = whole.rfind("0.9");
  for (std::string::size_type cut = 0; cut <= last_value; cut++) {
    TCAir_input air;
    std::string printed;
    EXPECT_EQ(read_air_text(air, whole.substr(0, cut), printed), 0) << cut;
  }
}

TEST(Air_input, written_and_read_again_each_kind_is_unchanged) {
  for (int kind = 0; kind <= 3; kind++) {
    TCAir_input air;
    ASSERT_EQ(air.allocate_arrays(2), 1);
    air.band_id.band_id[0] = 3;
    air.band_id.band_id[1] = 5;
    air.air_type = kind;
    air.surface_shape = kind % 2;
    air.surface_radius = kind % 2 ? 6371000.5 : 0.0;
    air.molecular_height = 8000.25;
    air.molecular_density = 1.125;
    air.molecular_wavelength_dependence = 3.75;
    air.aerosol_height = 1500.5;
    air.aerosol_density = 0.625;
    air.aerosol_scattering_factor = 0.875;
    air.radiance_value[0] = 0.1;
    air.radiance_value[1] = 0.2;
    air.haze_phase_function[0] = 0.7;
    air.haze_phase_function[1] = 0.85;
    air.sun_max_radiance = 1234.5;
    air.external_exact = kind == 2;

    TCAir_input back;
    std::string printed;
    ASSERT_EQ(read_air_text(back, written_air(air), printed), 1) << printed;
    EXPECT_EQ(back.air_type, kind);
    EXPECT_EQ(back.surface_shape, kind % 2);
    EXPECT_DOUBLE_EQ(back.surface_radius, air.surface_radius);
    EXPECT_EQ(back.band_id.band_id[1], 5);
    EXPECT_DOUBLE_EQ(back.sun_max_radiance, 1234.5);
    EXPECT_EQ(back.external_exact, kind == 2 ? 1 : 0);
    if (kind == 0) {
      EXPECT_DOUBLE_EQ(back.radiance_value[1], 0.2);
    } else {
      EXPECT_DOUBLE_EQ(back.molecular_height, 8000.25);
      EXPECT_DOUBLE_EQ(back.molecular_density, 1.125);
      EXPECT_DOUBLE_EQ(back.molecular_wavelength_dependence, 3.75);
    }
    if (kind >= 2) {
      EXPECT_DOUBLE_EQ(back.aerosol_height, 1500.5);
      EXPECT_DOUBLE_EQ(back.aerosol_density, 0.625);
    }
    if (kind == 2) {
      EXPECT_DOUBLE_EQ(back.aerosol_scattering_factor, 0.875);
    }
    if (kind == 3) {
      EXPECT_DOUBLE_EQ(back.radiance_value[0], 0.1);
      EXPECT_DOUBLE_EQ(back.haze_phase_function[1], 0.85);
    }
  }
}

TEST(Air_input, writer_prints_the_canonical_haze_file) {
  TCAir_input air;
  ASSERT_EQ(air.allocate_arrays(2), 1);
  air.band_id.band_id[0] = 1;
  air.band_id.band_id[1] = 2;
  air.air_type = 3;
  air.surface_shape = 0;
  air.radiance_value[0] = 0.5;
  air.radiance_value[1] = 0.25;
  air.molecular_height = 8000;
  air.aerosol_height = 1200;
  EXPECT_EQ(written_air(air),
            "Tidecast_data_file air 2 2 \n"
            "number_of_bands 2\n"
            "band_id  1 2\n"
            "air_type: haze\n"
            "surface_shape flat\n"
            "molecular_height 8000\n"
            "molecular_density 1\n"
            "molecular_wavelength_dependence:  4.1\n"
            "aerosol_height 1200\n"
            "aerosol_density 1\n"
            "aerosol_scattering_strength:    0.5  0.25\n"
            "aerosol_scattering_width:    0.95  0.95\n"
            "sun_max_radiance 99999999\n"
            "external_exact 0 \n"
            "end \n");
}

TEST(Air_input, writer_refuses_kinds_and_shapes_without_a_word) {
  TCAir_input air;
  air.air_type = 4;
  std::ostringstream out;
  {
    Stream_capture printed(std::cout);
    EXPECT_EQ(air.write_stream(out), 0);
    EXPECT_EQ(printed.text(), "air type flag invalid \n");
  }
  air.air_type = 1;
  air.surface_shape = 2;
  Stream_capture printed(std::cout);
  EXPECT_EQ(air.write_stream(out), 0);
  EXPECT_EQ(printed.text(), "air surface type invalid \n");
}

TEST(Air_input, files_are_opened_and_failures_named) {
  Scratch_folder folder;
  TCAir_input air;
  const std::string path = folder.file("air.dat");
  {
    std::ofstream out(path);
    out << haze_file;
  }
  ASSERT_EQ(air.read_file(path.c_str()), 1);
  const std::string copy = folder.file("copy.dat");
  {
    Stream_capture quiet(std::cout);
    ASSERT_EQ(air.write_file(copy.c_str()), 1);
  }
  TCAir_input back;
  ASSERT_EQ(back.read_file(copy.c_str()), 1);
  EXPECT_DOUBLE_EQ(back.haze_phase_function[0], 0.8);

  Stream_capture printed(std::cout);
  EXPECT_EQ(air.read_file(folder.file("missing.dat").c_str()), 0);
  EXPECT_NE(printed.text().find("unable to open air input file "), std::string::npos);
  EXPECT_EQ(air.write_file(folder.file("no/such/dir.dat").c_str()), 0);
  EXPECT_NE(printed.text().find("unable to open air output file "), std::string::npos);
  {
    std::ofstream out(folder.file("bad.dat"));
    out << "Tidecast_data_file air 2 2\nnumber_of_bands -1\n";
  }
  EXPECT_EQ(air.read_file(folder.file("bad.dat").c_str()), 0);
  EXPECT_NE(printed.text().find("unable to process air file "), std::string::npos);
}

TEST(Air_input, packs_and_unpacks_every_field) {
  TCAir_input air;
  std::string printed;
  ASSERT_EQ(read_air_text(air, haze_file, printed), 1);
  copy_text(air.object_name, "haze_over_bay", 256);
  int* ints = nullptr;
  double* doubles = nullptr;
  char* chars = nullptr;
  int int_bytes = 0, double_bytes = 0, char_bytes = 0;
  Stream_capture quiet(std::cout);
  ASSERT_EQ(air.pack(ints, int_bytes, doubles, double_bytes, chars, char_bytes), 1);
  TCAir_input back;
  back.set_sizes_from_packed(ints, doubles, chars);
  ASSERT_EQ(back.unpack(ints, int_bytes, doubles, double_bytes, chars, char_bytes), 1);
  EXPECT_STREQ(back.object_name, "haze_over_bay");
  EXPECT_EQ(back.number_of_bands, 2);
  EXPECT_EQ(back.band_id.band_id[1], 9);
  EXPECT_EQ(back.air_type, 3);
  EXPECT_EQ(back.surface_shape, 1);
  EXPECT_EQ(back.external_exact, 1);
  EXPECT_DOUBLE_EQ(back.surface_radius, 6371000.0);
  EXPECT_DOUBLE_EQ(back.molecular_wavelength_dependence, 4.0);
  EXPECT_DOUBLE_EQ(back.aerosol_density, 2.5);
  EXPECT_DOUBLE_EQ(back.sun_max_radiance, 2000.0);
  EXPECT_DOUBLE_EQ(back.radiance_value[1], 0.5);
  EXPECT_DOUBLE_EQ(back.haze_phase_function[0], 0.8);

  // One int short is refused before anything is taken.
  TCAir_input other;
  other.set_sizes_from_packed(ints, doubles, chars);
  EXPECT_EQ(other.unpack(ints, int_bytes - 4, doubles, double_bytes, chars, char_bytes), 0);
  other.set_sizes_from_packed(ints, doubles, chars);
  EXPECT_EQ(other.unpack(ints, int_bytes, doubles, double_bytes - 8, chars, char_bytes), 0);
  EXPECT_EQ(other.unpack(ints, int_bytes, nullptr, double_bytes, chars, char_bytes), 0);
  delete[] ints;
  delete[] doubles;
  delete[] chars;
}

TEST(Air_input, unpack_messages_name_the_array_at_fault) {
  TCAir_input air;
  ASSERT_EQ(air.allocate_arrays(1), 1);
  int* ints = nullptr;
  double* doubles = nullptr;
  char* chars = nullptr;
  int int_bytes = 0, double_bytes = 0, char_bytes = 0;
  {
    Stream_capture quiet(std::cout);
    ASSERT_EQ(air.pack(ints, int_bytes, doubles, double_bytes, chars, char_bytes), 1);
  }
  TCAir_input back;
  {
    Stream_capture printed(std::cout);
    back.set_sizes_from_packed(ints, doubles, chars);
    EXPECT_EQ(back.unpack(ints, int_bytes + 4, doubles, double_bytes, chars, char_bytes), 0);
    EXPECT_EQ(printed.text(), "packing integer array of the wrong size \n");
  }
  {
    Stream_capture printed(std::cout);
    back.set_sizes_from_packed(ints, doubles, chars);
    EXPECT_EQ(back.unpack(ints, int_bytes, doubles, double_bytes + 8, chars, char_bytes), 0);
    EXPECT_EQ(printed.text(), "packing double array of the wrong size \n");
  }
  {
    Stream_capture printed(std::cout);
    EXPECT_EQ(back.unpack(nullptr, int_bytes, doubles, double_bytes, chars, char_bytes), 0);
    EXPECT_EQ(printed.text(), "integer variable pointer not allocated \n");
  }
  // A band count in the array that disagrees with the sizes is refused.
  {
    Stream_capture printed(std::cout);
    back.set_sizes_from_packed(ints, doubles, chars);
    int saved = ints[0];
    ints[0] = 5;
    EXPECT_EQ(back.unpack(ints, int_bytes, doubles, double_bytes, chars, char_bytes), 0);
    ints[0] = saved;
    EXPECT_EQ(printed.text(), "packing integer array of the wrong size \n");
  }
  delete[] ints;
  delete[] doubles;
  delete[] chars;
}

namespace {

// A file of the given kind's values over a round base of the given radius.
std::string air_text(const std::string& kind_and_values, const std::string& radius) {
  return "Tidecast_data_file air 2 2\nnumber_of_bands 2\nband_id 4 9\nair_type: " +
         kind_and_values.substr(0, kind_and_values.find('\n') + 1) +
         "surface_shape round\nsurface_radius " + radius + "\n" +
         kind_and_values.substr(kind_and_values.find('\n') + 1) + "end\n";
}

const char* clean_values =
    "clean\nmolecular_height 1\nmolecular_density 1\nmolecular_wavelength_dependence: 4.1\n";

std::string haze_values(const std::string& widths) {
  return "haze\nmolecular_height 1\nmolecular_density 1\nmolecular_wavelength_dependence: 4.1\n"
         "aerosol_height 1\naerosol_density 1\naerosol_scattering_strength:  0.5  0.5\n"
         "aerosol_scattering_width:  " +
         widths + "\n";
}

// Reads text from a file of that name; what was printed goes to printed.
int read_air_file(TCAir_input& air, const std::string& text, std::string& printed) {
  Scratch_folder folder;
  const std::string path = folder.file("sky.air");
  {
    std::ofstream out(path);
    out << text;
  }
  Stream_capture out(std::cout);
  const int result = air.read_file(path.c_str());
  printed = out.text();
  // The folder's name changes from run to run.
  std::string::size_type at;
  while ((at = printed.find(path)) != std::string::npos)
    printed.replace(at, path.size(), "sky.air");
  return result;
}

}  // namespace

TEST(Air_input, round_base_of_no_radius_is_refused_naming_file_and_value) {
  for (const char* radius : {"0", "-5"}) {
    TCAir_input air;
    std::string printed;
    EXPECT_EQ(read_air_file(air, air_text(clean_values, radius), printed), 0) << radius;
    EXPECT_EQ(printed, std::string("air file sky.air: surface_radius ") + radius +
                           " must be above 0\nunable to process air file sky.air\n");
  }
  TCAir_input air;
  std::string printed;
  EXPECT_EQ(read_air_file(air, air_text(clean_values, "6371000"), printed), 1) << printed;
}

TEST(Air_input, flat_base_needs_no_radius) {
  TCAir_input air;
  std::string printed;
  const std::string text =
      "Tidecast_data_file air 2 2\nnumber_of_bands 1\nband_id 1\nair_type: clean\n"
      "surface_shape flat\nmolecular_height 1\nmolecular_density 1\n"
      "molecular_wavelength_dependence: 4.1\nend\n";
  EXPECT_EQ(read_air_text(air, text, printed), 1) << printed;
}

TEST(Air_input, haze_width_outside_minus_one_to_one_is_refused) {
  for (const char* widths : {"0.8  1.5", "0.8  1", "-1  0.8", "0.8  -2"}) {
    TCAir_input air;
    std::string printed;
    EXPECT_EQ(read_air_file(air, air_text(haze_values(widths), "6371000"), printed), 0) << widths;
    const std::string bad =
        std::string(widths).find("0.8") == 0
            ? std::string(widths).substr(5) + " of band 9"
            : std::string(widths).substr(0, std::string(widths).find(' ')) + " of band 4";
    EXPECT_EQ(printed, "air file sky.air: aerosol_scattering_width " + bad +
                           " must lie strictly between -1 and 1\n"
                           "unable to process air file sky.air\n");
  }
  TCAir_input air;
  std::string printed;
  EXPECT_EQ(read_air_file(air, air_text(haze_values("-0.99  0.99"), "6371000"), printed), 1)
      << printed;
}

TEST(Air_input, negative_densities_and_heights_of_no_size_are_refused) {
  struct Case {
    const char* values;
    const char* message;
  } cases[] = {
      {"clean\nmolecular_height 1\nmolecular_density -1\nmolecular_wavelength_dependence: 4.1\n",
       "molecular_density -1 must not be negative"},
      {"clean\nmolecular_height 0\nmolecular_density 1\nmolecular_wavelength_dependence: 4.1\n",
       "molecular_height 0 must be above 0"},
      {"dirty\nmolecular_height 1\nmolecular_density 1\nmolecular_wavelength_dependence: 4.1\n"
       "aerosol_height -2\naerosol_density 1\naerosol_scattering_factor 0.93\n",
       "aerosol_height -2 must be above 0"},
      {"dirty\nmolecular_height 1\nmolecular_density 1\nmolecular_wavelength_dependence: 4.1\n"
       "aerosol_height 1\naerosol_density -0.5\naerosol_scattering_factor 0.93\n",
       "aerosol_density -0.5 must not be negative"},
  };
  for (const Case& c : cases) {
    TCAir_input air;
    std::string printed;
    EXPECT_EQ(read_air_file(air, air_text(c.values, "6371000"), printed), 0) << c.message;
    EXPECT_EQ(printed, std::string("air file sky.air: ") + c.message +
                           "\nunable to process air file sky.air\n");
  }
}

TEST(Air_input, negative_uniform_radiance_is_refused) {
  TCAir_input air;
  std::string printed;
  EXPECT_EQ(
      read_air_file(air, air_text("uniform\nradiance_value 2\nradiance_value -3\n", "6371000"),
                    printed),
      0);
  EXPECT_EQ(printed,
            "air file sky.air: radiance_value -3 of band 9 must not be negative\n"
            "unable to process air file sky.air\n");
}

TEST(Air_input, dirty_factor_giving_a_band_a_width_of_one_or_more_is_refused) {
  // The list's band table holds the centres: band 4 at 0.45, band 9 at 0.65
  // micrometres. A factor of 1.1 gives band 4 a width of 1.1 - 0.1064 * 0.45.
  TCObject_list_input list;
  list.number_of_bands = 2;
  list.objects_spectrum = new TCBand[2];
  list.objects_spectrum[0].band_id = 9;
  list.objects_spectrum[0].center_wavelength = 0.65;
  list.objects_spectrum[1].band_id = 4;
  list.objects_spectrum[1].center_wavelength = 0.45;
  const std::string dirty =
      "dirty\nmolecular_height 1\nmolecular_density 1\nmolecular_wavelength_dependence: 4.1\n"
      "aerosol_height 1\naerosol_density 1\naerosol_scattering_factor ";
  TCAir_input air;
  air.list = &list;
  std::string printed;
  EXPECT_EQ(read_air_file(air, air_text(dirty + "1.1\n", "6371000"), printed), 0);
  EXPECT_EQ(printed,
            "air file sky.air: aerosol_scattering_factor 1.1 gives band 4 a scattering width of "
            "1.05212, which must lie strictly between -1 and 1\n"
            "unable to process air file sky.air\n");
  TCAir_input fine;
  fine.list = &list;
  EXPECT_EQ(read_air_file(fine, air_text(dirty + "0.93\n", "6371000"), printed), 1) << printed;
}
