#!/usr/bin/env bash
# Draws tidewriter.ico: an echogram under a tide. Dark water, the sea bed's echo in the colours of the display,
# weak above strong, and two waves on top; cut to a plate with round corners. Needs ImageMagick; run by hand
# after a change of the drawing.
set -euo pipefail
cd "$(dirname "$0")"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# The bed at a height, from edge to edge of a drawing of 1024 x 1024.
bed() {
  local y=$1
  printf "path 'M 0 %d C 220 %d 340 %d 512 %d S 820 %d 1024 %d L 1024 1024 L 0 1024 Z'" \
    "$y" $((y - 150)) $((y - 150)) $((y + 10)) $((y + 170)) "$y"
}

# A band of water of a thickness, its upper edge starting at a height.
wave() {
  local y=$1 low=$(($1 + $2))
  printf "path 'M 0 %d C 190 %d 330 %d 512 %d S 834 %d 1024 %d L 1024 %d C 834 %d 694 %d 512 %d S 190 %d 0 %d Z'" \
    "$y" $((y - 130)) $((y - 130)) "$y" $((y + 130)) "$y" \
    "$low" $((low + 130)) $((low + 130)) "$low" $((low - 130)) "$low"
}

layers=()
y=590
for colour in '#3a2fd8' '#1769e8' '#11b3d6' '#1fc97a' '#b9dc2a' '#f8c51c' '#f5801e' '#dc2a20'; do
  layers+=(-fill "$colour" -draw "$(bed $y)")
  y=$((y + 46))
done

convert -size 1024x1024 gradient:'#1b56a0'-'#150b3a' \
  -stroke none "${layers[@]}" \
  -fill "#e6f6ff" -draw "$(wave 226 64)" -fill "#57b9ee" -draw "$(wave 352 36)" \
  "$scratch/drawing.png"
convert -size 1024x1024 xc:black -fill white -draw 'roundrectangle 32,32 991,991 200,200' "$scratch/plate.png"
convert "$scratch/drawing.png" "$scratch/plate.png" -alpha off -compose CopyOpacity -composite \
  "$scratch/large.png"

sizes=()
for size in 256 64 48 40 32 24 20 16; do
  convert "$scratch/large.png" -filter Lanczos -resize "${size}x$size" -depth 8 -strip "$scratch/$size.png"
  sizes+=("$scratch/$size.png")
done
convert "${sizes[@]}" tidewriter.ico
