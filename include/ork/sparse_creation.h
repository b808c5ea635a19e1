/* SPDX-License-Identifier: MIT */
/* What takes or gives arrays of indices, for one precision and one width: ork/sparse_routines.h includes this list with
   ORK_INT and ORK_SIZED besides its own words. */

/* New handles on the caller's arrays. *a is written on success alone. */
int64_t ORK_SIZED(create_csr)(ork_sparse_matrix_t* a, ork_spblas_base base, ORK_INT rows, ORK_INT columns,
                              const ORK_INT* rows_start, const ORK_INT* rows_end, const ORK_INT* column_index,
                              const ORK_ELEMENT* values);
int64_t ORK_SIZED(create_csc)(ork_sparse_matrix_t* a, ork_spblas_base base, ORK_INT rows, ORK_INT columns,
                              const ORK_INT* columns_start, const ORK_INT* columns_end, const ORK_INT* row_index,
                              const ORK_ELEMENT* values);
int64_t ORK_SIZED(create_coo)(ork_sparse_matrix_t* a, ork_spblas_base base, ORK_INT rows, ORK_INT columns,
                              ORK_INT count, const ORK_INT* row_index, const ORK_INT* column_index,
                              const ORK_ELEMENT* values);
int64_t ORK_SIZED(create_bsr)(ork_sparse_matrix_t* a, ork_spblas_base base, ork_spblas_layout layout, ORK_INT rows,
                              ORK_INT columns, ORK_INT block, const ORK_INT* rows_start, const ORK_INT* rows_end,
                              const ORK_INT* column_index, const ORK_ELEMENT* values);

/* The arrays behind a handle of the format, width and precision of the name; they stay the handle's or the caller's,
   and live as long as before. An address of a result may be null: it is not wanted. */
int64_t ORK_SIZED(export_csr)(ork_sparse_matrix_t a, ork_spblas_base* base, ORK_INT* rows, ORK_INT* columns,
                              ORK_INT** rows_start, ORK_INT** rows_end, ORK_INT** column_index, ORK_ELEMENT** values);
int64_t ORK_SIZED(export_csc)(ork_sparse_matrix_t a, ork_spblas_base* base, ORK_INT* rows, ORK_INT* columns,
                              ORK_INT** columns_start, ORK_INT** columns_end, ORK_INT** row_index,
                              ORK_ELEMENT** values);
int64_t ORK_SIZED(export_coo)(ork_sparse_matrix_t a, ork_spblas_base* base, ORK_INT* rows, ORK_INT* columns,
                              ORK_INT* count, ORK_INT** row_index, ORK_INT** column_index, ORK_ELEMENT** values);
int64_t ORK_SIZED(export_bsr)(ork_sparse_matrix_t a, ork_spblas_base* base, ork_spblas_layout* layout, ORK_INT* rows,
                              ORK_INT* columns, ORK_INT* block, ORK_INT** rows_start, ORK_INT** rows_end,
                              ORK_INT** column_index, ORK_ELEMENT** values);

/* New values in the handle's arrays, the caller's too. Without row_index and column_index (null) they are all, in the
   order of the array; count is their number, or 0 for nothing to do. Otherwise values[k] is that of the place
   (row_index[k], column_index[k]), counted from the base, as with set_value. A place that is not stored is refused
   before anything is written. */
int64_t ORK_SIZED(update_values)(ork_sparse_matrix_t a, ORK_INT count, const ORK_INT* row_index,
                                 const ORK_INT* column_index, const ORK_ELEMENT* values);

#undef ORK_INT
#undef ORK_SIZED
