#!/bin/sh
# Regenerates the window icon (16, 32, 48, 256 px) and the banner from nothing but ImageMagick and the DejaVu fonts.
# Usage: sh make-images.sh   (writes into the folder holding this script)
set -eu
cd "$(dirname "$0")"

FONT=/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf
BOLD=/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf
# -strip and a fixed date keep the files byte-identical from one run to the next.
OUT="-strip -define png:exclude-chunks=date,time"

# Banner, 640 x 200 true colour. The window shows it squeezed into a 408 x 64 box, so it is
# drawn undistorted at that box's shape (1280 x 200) and then squeezed to 640 x 200 here: the
# display's stretch undoes the squeeze.
convert -size 1280x200 gradient:'#1b2430'-'#05070a' \
    -fill '#b3261e' -draw 'rectangle 0,142 1280,147' \
    -fill '#2e3b4e' -draw 'polygon 1150,14 1240,14 1240,86 1195,132 1150,86' \
    -fill '#b3261e' -draw 'polygon 1160,24 1230,24 1230,81 1195,117 1160,81' \
    -font "$BOLD" -pointsize 96 -fill '#e8ecf1' -annotate +36+118 'Hostwarden' \
    -font "$FONT" -pointsize 38 -fill '#9fb0c4' -annotate +40+188 'Red Faction dedicated server control' \
    -resize '640x200!' -type TrueColor $OUT PNG24:banner.png

# Icon: a red shield with a light rim and a light "H", reduced to 16 colours; drawn without
# antialiasing so the small sizes stay crisp.
# $1 = size; $2..$5 = the H's left x, stroke, right x, top y; $6 = bottom y; $7 = bar top y.
shield() {
    size=$1 lx=$2 t=$3 rx=$4 top=$5 bottom=$6 bar=$7
    s=$(( size - 1 ))
    m=$(( s / 2 ))
    k=$(( s * 5 / 9 ))
    convert -size "${size}x${size}" xc:none +antialias \
        -fill '#e8ecf1' -draw "polygon 0,0 $s,0 $s,$k $m,$s $(( s - m )),$s 0,$k" \
        -fill '#b3261e' -draw "polygon 2,2 $(( s - 2 )),2 $(( s - 2 )),$k $(( s - m )),$(( s - 3 )) $m,$(( s - 3 )) 2,$k" \
        -fill '#e8ecf1' \
        -draw "rectangle $lx,$top $(( lx + t - 1 )),$bottom" \
        -draw "rectangle $rx,$top $(( rx + t - 1 )),$bottom" \
        -draw "rectangle $lx,$bar $(( rx + t - 1 )),$(( bar + t - 1 ))" \
        -colors 16 $OUT "PNG8:icon${size}.png"
}
shield 32 8 4 20 6 22 12
shield 16 4 2 10 3 10 6

# The larger sizes come from the drawing (hostwarden.svg), rendered at four times the size
# and scaled down, so their edges are smooth.
for size in 48 256; do
    convert -background none -density $(( 72 * size / 64 )) hostwarden.svg \
        -resize "${size}x${size}" $OUT "PNG32:icon${size}.png"
done
