#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TCSurface_field.h"

// The base field: what every slot does when a field does not override it.

TEST(SurfaceField, DefaultsAndSizes) {
  std::vector<float> buffer(10 * 4, 1.0f);
  TCSurface_field field(-7, buffer.data(), 8, 4, 0.5, 0.25);
  EXPECT_STREQ(field.spectrum_file, "spectra.dat");
  EXPECT_EQ(field.kind, -7);
  EXPECT_EQ(field.n_x, 8);
  EXPECT_EQ(field.n_y, 4);
  EXPECT_EQ(field.dx, 0.5);
  EXPECT_EQ(field.dy, 0.25);
  EXPECT_EQ(field.field, buffer.data());
  EXPECT_EQ(field.generate, 0);
  EXPECT_EQ(field.reference_time, 0.0);
  EXPECT_EQ(field.buffer_floats(), 40);
  TCSurface_field empty(0, nullptr, 0, 4, 1.0, 1.0);
  EXPECT_EQ(empty.buffer_floats(), 0);
}

TEST(SurfaceField, BaseSlotsLeaveOrZeroTheBuffer) {
  std::vector<float> buffer(10 * 4, 1.0f);
  TCSurface_field field(0, buffer.data(), 8, 4, 1.0, 1.0);
  TCSurface_field* slots = &field;
  slots->evolve_heights(3.0);
  slots->initialize_field();
  for (size_t e = 0; e < buffer.size(); e++) ASSERT_EQ(buffer[e], 1.0f);

  EXPECT_EQ(slots->transform_to_lattice(), 0.0);
  for (size_t e = 0; e < buffer.size(); e++) ASSERT_EQ(buffer[e], 0.0f);

  std::vector<float> array(10 * 4 + 3, 2.0f);
  slots->evolve_acceleration_into(array.data(), 1.0, 1.0, 1.0, 1.0);
  for (size_t e = 0; e < 40; e++) ASSERT_EQ(array[e], 0.0f);
  // Only the lattice's floats: what lies beyond is not touched.
  for (size_t e = 40; e < array.size(); e++) ASSERT_EQ(array[e], 2.0f);

  buffer.assign(40, 1.0f);
  slots->evolve_potential(2.0);
  for (size_t e = 0; e < buffer.size(); e++) ASSERT_EQ(buffer[e], 0.0f);

  // No buffer: nothing to do and nothing to break.
  TCSurface_field none(0, nullptr, 8, 4, 1.0, 1.0);
  none.transform_to_lattice();
  none.evolve_potential(1.0);
  none.evolve_acceleration_into(nullptr, 1.0, 0.0, 0.0, 0.0);
}

TEST(SurfaceField, SpectrumFileNameIsCutToFit) {
  TCSurface_field field(0, nullptr, 8, 4, 1.0, 1.0);
  field.set_spectrum_file("sea_spectrum.dat");
  EXPECT_STREQ(field.spectrum_file, "sea_spectrum.dat");
  const std::string long_name(400, 'a');
  field.set_spectrum_file(long_name.c_str());
  EXPECT_EQ(std::string(field.spectrum_file), std::string(255, 'a'));
  field.set_spectrum_file(nullptr);
  EXPECT_STREQ(field.spectrum_file, "");
}
