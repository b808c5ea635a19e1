/* SPDX-License-Identifier: MIT */
/* Routines of ork/pde.h in one precision: ORK_REAL is the type, ORK_NAME(init_trig_transform) the name. */

/* Transforms. commit looks at f only to warn of boundary values that should be zero. */
int64_t ORK_NAME(init_trig_transform)(int64_t n, int64_t type, int64_t* ipar, ORK_REAL* rpar);
int64_t ORK_NAME(commit_trig_transform)(ORK_REAL* f, ork_dft_descriptor** handle, int64_t* ipar, ORK_REAL* rpar);
int64_t ORK_NAME(forward_trig_transform)(ORK_REAL* f, ork_dft_descriptor** handle, int64_t* ipar, ORK_REAL* rpar);
int64_t ORK_NAME(backward_trig_transform)(ORK_REAL* f, ork_dft_descriptor** handle, int64_t* ipar, ORK_REAL* rpar);

/* Rectangle. */
int64_t ORK_NAME(init_helmholtz_2d)(ORK_REAL ax, ORK_REAL bx, ORK_REAL ay, ORK_REAL by, int64_t nx, int64_t ny,
                                    const char* sides, ORK_REAL q, int64_t* ipar, ORK_REAL* rpar);
int64_t ORK_NAME(commit_helmholtz_2d)(ork_dft_descriptor** xhandle, int64_t* ipar, ORK_REAL* rpar);
int64_t ORK_NAME(helmholtz_2d)(ORK_REAL* f, const ORK_REAL* bd_ax, const ORK_REAL* bd_bx, const ORK_REAL* bd_ay,
                               const ORK_REAL* bd_by, ork_dft_descriptor** xhandle, int64_t* ipar, ORK_REAL* rpar);

/* Box. */
int64_t ORK_NAME(init_helmholtz_3d)(ORK_REAL ax, ORK_REAL bx, ORK_REAL ay, ORK_REAL by, ORK_REAL az, ORK_REAL bz,
                                    int64_t nx, int64_t ny, int64_t nz, const char* sides, ORK_REAL q, int64_t* ipar,
                                    ORK_REAL* rpar);
int64_t ORK_NAME(commit_helmholtz_3d)(ork_dft_descriptor** xhandle, ork_dft_descriptor** yhandle, int64_t* ipar,
                                      ORK_REAL* rpar);
int64_t ORK_NAME(helmholtz_3d)(ORK_REAL* f, const ORK_REAL* bd_ax, const ORK_REAL* bd_bx, const ORK_REAL* bd_ay,
                               const ORK_REAL* bd_by, const ORK_REAL* bd_az, const ORK_REAL* bd_bz,
                               ork_dft_descriptor** xhandle, ork_dft_descriptor** yhandle, int64_t* ipar,
                               ORK_REAL* rpar);

/* Sphere: sph_p the whole circle of longitudes, sph_np a part of it. */
int64_t ORK_NAME(init_sph_p)(ORK_REAL ap, ORK_REAL bp, ORK_REAL at, ORK_REAL bt, int64_t np, int64_t nt, ORK_REAL q,
                             int64_t* ipar, ORK_REAL* rpar);
int64_t ORK_NAME(commit_sph_p)(ork_dft_descriptor** sine, ork_dft_descriptor** cosine, int64_t* ipar, ORK_REAL* rpar);
int64_t ORK_NAME(sph_p)(ORK_REAL* f, ork_dft_descriptor** sine, ork_dft_descriptor** cosine, int64_t* ipar,
                        ORK_REAL* rpar);
int64_t ORK_NAME(init_sph_np)(ORK_REAL ap, ORK_REAL bp, ORK_REAL at, ORK_REAL bt, int64_t np, int64_t nt, ORK_REAL q,
                              int64_t* ipar, ORK_REAL* rpar);
int64_t ORK_NAME(commit_sph_np)(ork_dft_descriptor** sine, int64_t* ipar, ORK_REAL* rpar);
int64_t ORK_NAME(sph_np)(ORK_REAL* f, ork_dft_descriptor** sine, int64_t* ipar, ORK_REAL* rpar);
