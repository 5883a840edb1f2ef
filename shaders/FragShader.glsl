#version 330 core
// Fragment stage of the mesh program: three lamps that move with the viewer, a specular
// model with closed constants (roughness 0.5, metallic 0.6), a cool tint on the side
// turned away from each lamp, and a small ambient term. The result is not clamped.

in vec3 FragPos;
in vec3 norm;

uniform vec3 EyePos;
uniform vec3 HeadDir;
uniform vec3 objColor;
uniform int IsOut;

// This value of PI (not 3.14159265359) sets every lamp angle below.
const float PI = 3.14158265359;

vec3 OffsetColor;
vec3 actColor;

// Turns Apoint through angle about axis by a quaternion; the axis keeps its length.
vec3 RotatePointQ(vec3 axis, vec3 Apoint, float angle)
{
    float t = sin(angle / 2.0);
    vec4 Q = vec4(t * axis.x, t * axis.y, t * axis.z, cos(angle / 2.0));
    float x = Q.x;
    float y = Q.y;
    float z = Q.z;
    float w = Q.w;
    mat3 R;
    R[0] = vec3(1.0 - 2.0 * (y * y + z * z), 2.0 * x * y - 2.0 * w * z, 2.0 * (x * z + w * y));
    R[1] = vec3(2.0 * x * y + 2.0 * w * z, 1.0 - 2.0 * (x * x + z * z), 2.0 * (y * z - w * x));
    R[2] = vec3(2.0 * (x * z - w * y), 2.0 * (y * z + w * x), 1.0 - 2.0 * (x * x + y * y));
    return Apoint * R;
}

// Schlick's approximation of the Fresnel reflectance.
vec3 FresnelTerm(float cosTheta, vec3 F0)
{
    return F0 + (1.0 - F0) * pow(clamp(1.0 - cosTheta, 0.0, 1.0), 5.0);
}

// The light of one lamp; lightDir points from the lamp towards the scene.
vec3 SimplifyShading(vec3 lightDir, vec3 vNormal, vec3 viewDir)
{
    vec3 k_cool = vec3(0.0, 0.0, 0.1) + 0.1 * actColor;
    vec3 reverseLightDir = normalize(-lightDir);
    float metallic = 0.6;
    vec3 HDir = normalize(viewDir + reverseLightDir);
    float NdotH = max(dot(vNormal, HDir), 0.0);
    float NdotV = max(dot(vNormal, viewDir), 0.0);
    float diff = max(dot(vNormal, reverseLightDir), 0.0);
    // GGX distribution and Smith geometry for roughness 0.5, with the Cook-Torrance
    // denominator 4 * NdotV * diff divided out.
    float denom = -3.75 * NdotH * NdotH + 4.0;
    float D = 1.0 / (PI * denom * denom);
    float G = (1.0 / (NdotV * 0.71875 + 0.28125)) * (1.0 / (diff * 0.71875 + 0.28125));
    vec3 F0 = mix(vec3(0.04, 0.04, 0.04), actColor, metallic);
    vec3 F = FresnelTerm(max(dot(HDir, viewDir), 0.0), F0);
    vec3 specular = D * G * 0.25 * F;
    vec3 kd = (vec3(1.0, 1.0, 1.0) - F) * (1.0 - metallic);
    return (actColor * kd + specular) * diff + (0.5 - diff / 2.0) * k_cool;
}

void main()
{
    vec3 TrueNormal = normalize(norm);
    OffsetColor = vec3(0.0, 0.0, 0.0);
    actColor = objColor + OffsetColor;
    vec3 ambient = vec3(0.1, 0.1, 0.1) * actColor;
    vec3 viewDir = normalize(EyePos * 1000.0 - FragPos);
    // Both sides of a sheet are lit from the side on which they are seen.
    if (dot(TrueNormal, viewDir) < 0.0)
        TrueNormal = -TrueNormal;

    vec3 lightPos = normalize(RotatePointQ(HeadDir, EyePos, -PI * 0.2));
    vec3 color1 = SimplifyShading(-lightPos, TrueNormal, viewDir);
    lightPos = normalize(RotatePointQ(HeadDir, EyePos, PI * 0.5));
    vec3 color2 = SimplifyShading(-lightPos, TrueNormal, viewDir);
    vec3 leftDir = cross(HeadDir, EyePos);
    lightPos = normalize(RotatePointQ(leftDir, EyePos, -PI * 0.6));
    vec3 color3 = SimplifyShading(-lightPos, TrueNormal, viewDir);

    gl_FragColor = vec4(color1 + color2 + color3 + ambient, 1.0);
}
