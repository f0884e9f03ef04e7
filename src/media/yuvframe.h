#pragma once

#include <QByteArray>

// One YUV 4:2:0 picture with its planes packed row after row (stride == row length).
struct YuvFrame
{
    int width = 0;
    int height = 0;
    int strideY = 0;
    int strideU = 0;
    int strideV = 0;
    QByteArray planeY;
    QByteArray planeU;
    QByteArray planeV;
};
