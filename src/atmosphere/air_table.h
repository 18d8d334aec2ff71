#ifndef TC_AIR_TABLE_H
#define TC_AIR_TABLE_H

#include "TCSpectrum.h"
#include "TCVector.h"

class TCAir;
class TCView;
class object_contour;

// The path integrals of one viewpoint over a grid of ray directions, so that
// a pixel costs a bilinear lookup in place of a numeric integral.
//
// Columns are azimuths relative to the sun's, phi_low + i * phi_step
// (radians, wrapped into -pi..pi before lookup). Rows hang from the round
// base's horizon at each azimuth: down row j at horizon[i] - j *
// theta_step_down, up row j at horizon[i] + j * theta_step_up. Row 0 of each
// kind is computed 0.01 of a step off the horizon, so that no cell's ray
// grazes it. Each cell holds the integrals of the ray from the viewpoint
// between the ends it was computed for (metres): those of the pixel the ray
// passes through. A cell away from the view holds nothing: zero radiance,
// transmission 1.0 and both ends 99999999.0.
//
// Planes are flat arrays: radiance_*[(band * rows + j) * n_phi + i] with the
// molecular integrals in bands 0..n-1 and the aerosol ones in n..2n-1;
// transmission_*[(band * rows + j) * n_phi + i]; near_* and far_*[j * n_phi +
// i]. Bands are those of the owning air.
class air_table {
 public:
  explicit air_table(TCAir* air_in);
  ~air_table();

  // Sizes the table for rays from viewpoint (air frame, metres) over
  // elevations e_low..e_high and azimuths a_low..a_high relative to the sun
  // (radians), each widened by margin and rounded out to the steps. phi
  // offset is the sun's azimuth in the air's frame, kept in -pi..pi. Memory
  // running out prints "Not enough memory to allocate air table " and ends
  // the run with status 1.
  void define(const TCVector& viewpoint_in, double phi_offset_in, double theta_step,
              double phi_step_in, double e_low, double e_high, double a_low, double a_high,
              double margin);

  // The path ends of a run of whole-picture columns: per pixel, its near end
  // and the far end a cell through it serves (metres), as cell_ends takes
  // them from a contour.
  class pixel_ends {
   public:
    pixel_ends(int n_rows_in, int first_col_in, int n_cols_in);
    ~pixel_ends();
    // Columns of the contour taken as whole-picture columns from
    // first_col on.
    void take(const object_contour& contour, int first_col_of_contour);
    int has(int col) const { return col >= first_col && col < first_col + n_cols; }
    long at(int row, int col) const { return static_cast<long>(row) * n_cols + col - first_col; }

    int n_rows;
    int first_col;
    int n_cols;
    double* near_end;
    double* far_end;

   private:
    pixel_ends(const pixel_ends&);
    pixel_ends& operator=(const pixel_ends&);
  };

  // Computes every cell through the view (in the air's frame) and the
  // contour's depths. window_margin widens the window (image-plane units) so
  // that the nodes around its edge pixels are filled from those pixels.
  // Prints the table's layout when verbose, with s_primary_min the mean near
  // depth (metres).
  void fill(const TCView& local_view, const object_contour& contour, double window_margin,
            double s_primary_min);
  // The same over a whole picture (whole_view, air frame) of which only the
  // columns in ends are known: a cell is computed when it lies in the
  // widened whole window and its pixel's column is in ends, and holds
  // nothing otherwise. A cell's content thus depends on its pixel alone,
  // not on which part of the picture is being imaged.
  void fill_whole(const TCView& whole_view, const pixel_ends& ends, double window_margin,
                  double s_primary_min);

  // Elevation over the air's horizontal plane and azimuth relative to the
  // sun, wrapped into -pi..pi, of an air-frame direction.
  void angles_of(const TCVector& direction, double& elevation, double& azimuth) const;

  // The bilinear blend at (elevation, azimuth) for a path between near and
  // far (metres): 1 with the molecular and aerosol integrals and the
  // transmission per band (number_of_bands each), 0 for a miss: outside the
  // azimuths, ends off the cells' by more than the tolerance, or a cell of
  // no ray in the blend. An azimuth off the columns is first taken a turn
  // round, for columns that run past -pi or pi. A path to the top of the air
  // that strikes the base is also a miss where the blended cells' ground
  // distances differ by more than a quarter, next to the horizon: there the
  // ground distance falls several-fold within a row. Cells of negligible
  // weight take no part. Any of the outputs may be null.
  int lookup(double elevation, double azimuth, double near, double far, double* molecular,
             double* aerosol, double* transmission) const;

  // The air-frame direction of a cell's ray (up 1 for the up rows).
  void node_direction(int up, int j, int i, TCVector& direction) const;

  // The allowed difference of path ends for a path of these ends: 0.05 of
  // its length, or 99999999.0 when it runs to the top of the air.
  static double end_tolerance(double near, double far);
  // A pixel's near end (its near limit, else the contour's least distance)
  // and the distance of what covers it, in metres from the contour's
  // squared distances, at most 99999999.0.
  static double pixel_near(const object_contour& contour, int row, int col);
  static double pixel_depth(const object_contour& contour, int row, int col);

  // Cell access for one kind of row (up 1, down 0).
  int rows(int up) const { return up ? n_up : n_down; }
  long cell(int j, int i) const { return static_cast<long>(j) * n_phi + i; }
  long plane_cell(int up, int band, int j, int i) const;
  double* radiance(int up) const { return up ? radiance_up : radiance_down; }
  double* transmission(int up) const { return up ? transmission_up : transmission_down; }
  double* near(int up) const { return up ? near_up : near_down; }
  double* far(int up) const { return up ? far_up : far_down; }

  TCAir* air;
  int sun_side_flag;  // 1 when the bearing towards the sun lies in the columns
  int number_of_bands;
  int n_phi;
  int n_down;
  int n_up;
  double phi_low;
  double phi_high;
  double phi_step;
  double phi_offset;
  double theta_low;
  double theta_high;
  double theta_step_down;
  double theta_step_up;
  double inverse_theta_step_down;
  double inverse_theta_step_up;
  TCVector viewpoint;
  TCSpectrum spectrum;
  double* horizon;  // per column, radians
  double* radiance_down;
  double* radiance_up;
  double* transmission_down;
  double* transmission_up;
  double* near_down;
  double* far_down;
  double* near_up;
  double* far_up;
  double* ground_down;  // per down cell, metres along its ray to the base

  double inverse_phi_step;
  // Cells whose integrals were computed by the last fill.
  long computed_cells;

  // "Not enough memory to allocate air table " and the end of the run,
  // status 1.
  static void allocation_failed();

 private:
  void release();
  // Ends of the pixel a cell's ray passes through; 0 when it passes through
  // none of the widened window.
  int cell_ends(const TCView& local_view, const object_contour& contour, double window_margin,
                const TCVector& direction, double& near_end, double& far_end) const;
  int whole_cell_ends(const TCView& whole_view, const pixel_ends& ends, double window_margin,
                      const TCVector& direction, double& near_end, double& far_end) const;
  // Fills each cell from the ends its ray finds, or with nothing.
  void fill_cells(const TCView* local_view, const object_contour* contour, const pixel_ends* ends,
                  double window_margin, double s_primary_min);
  // Elevation of the base's horizon at an air-frame azimuth (radians).
  double exact_horizon(double azimuth) const;
  // One row kind's (g, j) for an elevation below or above column i's horizon.
  void row_weights(int up, int i, double elevation, int& j0, int& j1, double& g) const;

  double* work_;  // 3 * number_of_bands

  air_table(const air_table&);
  air_table& operator=(const air_table&);
};

#endif
