#version 330 core
// Vertex stage of the mesh program: transforms positions and normals. The lighting
// position stays in the coordinates of the stored vertices, turned by SimuRot only.

layout (location = 0) in vec3 VertexPosition;
layout (location = 1) in vec3 VertexNormal;

uniform mat4 SimuRot;
uniform mat4 modelviewMatrix;
uniform mat4 projMatrix;
uniform mat3 NormTransMat;

varying vec3 norm;
varying vec3 FragPos;

void main()
{
    gl_Position = projMatrix * modelviewMatrix * vec4(VertexPosition, 1.0);
    norm = normalize(NormTransMat * VertexNormal);
    norm = (SimuRot * vec4(norm, 0.0)).xyz;
    FragPos = (SimuRot * vec4(VertexPosition, 1.0)).xyz;
}
