/* SPDX-License-Identifier: MIT */
/* Reads handwritten digits by the nearest of ten mean images: learns the means from the first half of a file and counts
   how many of the second half it names rightly.
       cc nearest_mean.c $(pkg-config --cflags --libs ork) -o nearest_mean && ./nearest_mean data/digits.csv */
#include <ork/cblas.h>
#include <stdio.h>
#include <stdlib.h>

enum { pixels = 64, classes = 10, most = 4000 };

static double image[most * pixels]; /* a row an image */
static int digit[most];

/* Number of images, or -1 - the number of the line that could not be read. */
static int read_images(FILE* file)
{
    for (int row = 0; row < most; ++row) {
        for (int i = 0; i <= pixels; ++i) {
            int value;
            const int got = fscanf(file, i == 0 ? "%d" : ",%d", &value);
            if (got == EOF && i == 0) return row;
            if (got != 1 || value < 0 || value > 16 || (i == pixels && value >= classes)) return -1 - (row + 1);
            if (i < pixels)
                image[row * pixels + i] = value;
            else
                digit[row] = value;
        }
    }
    return most;
}

int main(int argc, char** argv)
{
    FILE* file = argc == 2 ? fopen(argv[1], "r") : NULL;
    if (!file) {
        fprintf(stderr, argc == 2 ? "%s: can't be read\n" : "usage: nearest_mean digits.csv\n", argv[argc - 1]);
        return 1;
    }
    const int count = read_images(file);
    fclose(file);
    if (count < 2) {
        fprintf(stderr, "%s:%d: not 64 pixels of 0 to 16 and a digit, separated by commas\n", argv[1],
                count < 0 ? -1 - count : 1);
        return 1;
    }
    const int learned = count / 2, asked = count - learned;

    /* mean[c] = sum of the images of class c / their number: a product with a matrix that says who belongs where. */
    static double belongs[most * classes], mean[classes * pixels], half_square[classes], score[most * classes];
    int members[classes] = {0};
    for (int i = 0; i < learned; ++i) ++members[digit[i]];
    for (int i = 0; i < learned; ++i) belongs[i * classes + digit[i]] = 1.0 / members[digit[i]];
    cblas_dgemm(CblasRowMajor, CblasTrans, CblasNoTrans, classes, pixels, learned, 1, belongs, classes, image, pixels,
                0, mean, pixels);

    /* |x - m|^2 is least where x.m - |m|^2 / 2 is greatest. */
    for (int c = 0; c < classes; ++c)
        half_square[c] = cblas_ddot(pixels, &mean[c * pixels], 1, &mean[c * pixels], 1) / 2;
    for (int i = 0; i < asked; ++i)
        for (int c = 0; c < classes; ++c) score[i * classes + c] = half_square[c];
    cblas_dgemm(CblasRowMajor, CblasNoTrans, CblasTrans, asked, classes, pixels, 1, &image[learned * pixels], pixels,
                mean, pixels, -1, score, classes);

    int right = 0;
    for (int i = 0; i < asked; ++i) {
        int best = 0;
        for (int c = 1; c < classes; ++c)
            if (score[i * classes + c] > score[i * classes + best]) best = c;
        right += best == digit[learned + i];
    }
    printf("%d of %d digits named rightly (%.1f %%), learned from %d others\n", right, asked, 100.0 * right / asked,
           learned);
    return 0;
}
