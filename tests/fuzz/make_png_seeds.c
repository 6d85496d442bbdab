// Writes the PNG seed files of fuzz_png (run from tests/fuzz):
//   cc make_png_seeds.c -lpng -o /tmp/seeds && /tmp/seeds
#include <png.h>
#include <stdio.h>
#include <string.h>
static void w(const char *fn, int W, int H, int depth, int ct, int il, int trns) {
    FILE *f = fopen(fn, "wb");
    png_structp p = png_create_write_struct(PNG_LIBPNG_VER_STRING, 0, 0, 0);
    png_infop i = png_create_info_struct(p);
    png_init_io(p, f);
    png_set_IHDR(p, i, W, H, depth, ct, il, 0, 0);
    if (ct == PNG_COLOR_TYPE_PALETTE) {
        png_color pal[16];
        for (int k = 0; k < 16; k++) {
            pal[k].red = k * 16;
            pal[k].green = 255 - k * 16;
            pal[k].blue = k;
        }
        png_set_PLTE(p, i, pal, 16);
        if (trns) {
            png_byte a[4] = {0, 64, 128, 200};
            png_set_tRNS(p, i, a, 4, 0);
        }
    } else if (trns) {
        png_color_16 c = {0};
        c.gray = 1;
        c.red = 1;
        c.green = 2;
        c.blue = 3;
        png_set_tRNS(p, i, 0, 0, &c);
    }
    png_set_pHYs(p, i, 2835, 2835, 1);
    png_write_info(p, i);
    int ch = (ct == PNG_COLOR_TYPE_RGB)    ? 3
             : (ct == PNG_COLOR_TYPE_RGBA) ? 4
             : (ct == PNG_COLOR_TYPE_GA)   ? 2
                                           : 1;
    int rb = (W * ch * depth + 7) / 8;
    unsigned char row[1024];
    int passes = png_set_interlace_handling(p);
    for (int ps = 0; ps < passes; ps++)
        for (int y = 0; y < H; y++) {
            for (int k = 0; k < rb; k++)
                row[k] = (unsigned char)(k * 7 + y * 13);
            png_write_row(p, row);
        }
    png_write_end(p, i);
    png_destroy_write_struct(&p, &i);
    fclose(f);
}
int main() {
    w("seeds/png/pal4.png", 5, 3, 4, PNG_COLOR_TYPE_PALETTE, 0, 1);
    w("seeds/png/grey1.png", 10, 4, 1, PNG_COLOR_TYPE_GRAY, 0, 0);
    w("seeds/png/grey2t.png", 7, 3, 2, PNG_COLOR_TYPE_GRAY, 0, 1);
    w("seeds/png/rgba16i.png", 9, 7, 16, PNG_COLOR_TYPE_RGBA, 1, 0);
    w("seeds/png/rgb8t.png", 4, 4, 8, PNG_COLOR_TYPE_RGB, 0, 1);
    w("seeds/png/ga16.png", 3, 5, 16, PNG_COLOR_TYPE_GA, 0, 0);
    w("seeds/png/grey8i.png", 11, 9, 8, PNG_COLOR_TYPE_GRAY, 1, 0);
    return 0;
}
